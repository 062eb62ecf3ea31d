#pragma once

// Runs a program under the recorder in a folder of its own and gives what it left.

#include <chrono>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace record_test {

class RecordedProgram
{
public:
    RecordedProgram();
    ~RecordedProgram();
    RecordedProgram(const RecordedProgram&) = delete;
    RecordedProgram& operator=(const RecordedProgram&) = delete;

    /// Before start(). The file is "r.jsonl" unless ARCRECORD_FILE is set here; "" leaves it out.
    void setEnvironment(const std::string& name, const std::string& value) { m_environment[name] = value; }
    void start(const std::string& program, const std::string& argument = "");
    /// Waits for the end and expects the given status (as wait(2) gives it).
    void expectEnd(int status = 0);
    void run(const std::string& program, const std::string& argument = "")
    {
        start(program, argument);
        expectEnd();
    }
    void kill();

    pid_t pid() const { return m_pid; }
    std::string folder() const { return m_folder; }
    std::string output() const { return content("stdout"); }
    std::string errors() const { return content("stderr"); }
    std::string content(const std::string& file = "r.jsonl") const;
    /// The complete lines, without those of the header if it is the first.
    std::vector<std::string> lines(const std::string& file = "r.jsonl") const;
    /// Likewise, with every time as 0.
    std::vector<std::string> timelessLines(const std::string& file = "r.jsonl") const;
    std::string header(const std::string& file = "r.jsonl") const;
    void waitForLines(std::size_t count) const;

private:
    std::string m_folder;
    std::map<std::string, std::string> m_environment{{"ARCRECORD_FILE", "r.jsonl"}};
    pid_t m_pid = -1;
};

/// The sanitizer's library that this program runs with and that has to be preloaded before others; "" without one.
std::string sanitizerLibrary();

}  // namespace record_test
