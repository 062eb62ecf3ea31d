#pragma once

#include <functional>
#include <string>

namespace seeds {

/// Reads what the receiver puts out on its terminal, and sees that every sentence is whole.
class Reader
{
public:
    explicit Reader(const std::string& terminal);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Reads so many epochs and the beginning of one more: a receiver in virtual time makes no epoch before the last
    /// one is taken, so its time is then known. `pump` is called while nothing comes.
    void read(int epochs, const std::function<void()>& pump);
    /// Reads what is left of a receiver that has died.
    void readRest();

    int sentences() const { return m_sentences; }
    /// Of all sentences.
    std::uint64_t digest() const { return m_digest; }
    /// The first sentence that is none; empty if there was none of that kind.
    const std::string& torn() const { return m_torn; }

private:
    bool take();
    void takeByte(char byte);

    const int m_terminal;
    std::string m_line{};
    std::string m_torn{};
    std::uint64_t m_digest;
    int m_sentences = 0;
    int m_epochs = 0;  ///< begun
};

/// A sum over a text and what was before it.
std::uint64_t digestOf(const std::string& text, std::uint64_t before);
constexpr std::uint64_t kNoDigest = 0xcbf29ce484222325U;

}  // namespace seeds
