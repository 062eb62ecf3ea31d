#pragma once

// Writes recordings for tests, line by line.

#include "arcsim/Recording.h"

#include <string>

namespace record_test {

class RecordingText
{
public:
    /// Begins `afterUs` after the line before.
    RecordingText& begin(const std::string& function, const std::string& arguments = "{}", int thread = 1,
                         long afterUs = 10)
    {
        m_us += afterUs;
        m_text += R"({"n":)" + std::to_string(++m_calls) + place(thread) + R"(,"call":")" + function + R"(","args":)" +
                  arguments + "}\n";
        m_thread = thread;
        return *this;
    }
    /// Ends call `number`, or the last one that began.
    RecordingText& end(int code = 0, const std::string& outputs = "{}", long tookUs = 10, unsigned number = 0,
                       int thread = 0)
    {
        m_us += tookUs;
        m_text += R"({"n":)" + std::to_string(number == 0 ? m_calls : number) + place(thread == 0 ? m_thread : thread) +
                  R"(,"code":)" + std::to_string(code) + R"(,"out":)" + outputs + R"(,"tookUs":)" +
                  std::to_string(tookUs) + "}\n";
        return *this;
    }
    RecordingText& call(const std::string& function, int code = 0, long tookUs = 10)
    {
        return begin(function).end(code, "{}", tookUs);
    }
    RecordingText& event(int id, const std::string& hex = "", long afterUs = 10)
    {
        m_us += afterUs;
        m_text += R"({"us":)" + std::to_string(m_us) + R"(,"thread":9,"event":)" + std::to_string(id) +
                  R"(,"length":)" + std::to_string(hex.size() / 2) + R"(,"data":")" + hex + "\"}\n" + R"({"us":)" +
                  std::to_string(m_us) + R"(,"thread":9,"handled":true,"tookUs":0})" + "\n";
        return *this;
    }
    arcsim::Recording recording() const { return arcsim::parseRecording("r.jsonl", m_text); }

private:
    std::string place(int thread) const
    {
        return R"(,"us":)" + std::to_string(m_us) + R"(,"thread":)" + std::to_string(thread);
    }

    std::string m_text = R"({"recording":1,"utc":"","pid":1,"program":"p","library":null})"
                         "\n";
    long m_us = 0;
    unsigned m_calls = 0;
    int m_thread = 1;
};

}  // namespace record_test
