#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

/// A socket in a folder of its own that takes what is sent to the journal, and reads it as the journal would.
class JournalDaemon
{
public:
    struct Entry
    {
        std::map<std::string, std::string> fields;
        bool wasFile = false;  ///< handed over as a file instead of a datagram
        int seals = 0;         ///< of that file
    };

    /// `pathLength` is that of the socket's path, 0 for any.
    explicit JournalDaemon(std::size_t pathLength = 0);
    ~JournalDaemon();
    JournalDaemon(const JournalDaemon&) = delete;
    JournalDaemon& operator=(const JournalDaemon&) = delete;

    const std::string& path() const { return m_path; }

    /// Listens again at the same path, as a journal that was restarted.
    void restart();
    void stop();

    /// The next datagram as it came; nothing when there is none.
    std::optional<std::string> datagram();
    /// The next entry; nothing when there is none, or when it is not what the protocol allows.
    std::optional<Entry> next();

private:
    std::optional<std::string> receive(Entry& entry);

    std::string m_folder;
    std::string m_path;
    int m_socket = -1;
};
