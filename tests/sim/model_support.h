#pragma once

// What several tests of the simulated modem need: a clean start, a scenario file, a place where events arrive.

#include "client/ArcSim.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace model_test {

constexpr std::chrono::seconds kLimit{30};

/// Every test begins and ends with the modem in its start state, latencies off.
class SimulatedModem : public testing::Test
{
protected:
    SimulatedModem() { arcsim::reset(); }
    ~SimulatedModem() override { arcsim::reset(); }
};

/// The modem with an open connection.
class OpenModem : public SimulatedModem
{
protected:
    OpenModem() { EXPECT_EQ(ARC_Open(), 0); }
};

/// Makes a scenario file and lets the modem start with it; takes it away again when destroyed.
class EnvironmentScenario
{
public:
    explicit EnvironmentScenario(const std::string& text)
        : m_path((std::filesystem::path(testing::TempDir()) / ("scenario." + std::to_string(getpid()) + ".json")))
    {
        std::ofstream(m_path) << text;
        setenv("ARCSIM_SCENARIO", m_path.c_str(), 1);
        arcsim::reset();
    }
    ~EnvironmentScenario()
    {
        unsetenv("ARCSIM_SCENARIO");
        std::filesystem::remove(m_path);
        arcsim::reset();
    }
    EnvironmentScenario(const EnvironmentScenario&) = delete;
    EnvironmentScenario& operator=(const EnvironmentScenario&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

/// Where the handler of these tests puts what arrives.
class Mailbox
{
public:
    struct Letter
    {
        int id = 0;
        void* data = nullptr;
        int length = 0;
        std::vector<unsigned char> bytes{};
        std::thread::id thread{};
    };

    /// Of the running test; handlers are plain functions, so there is one.
    static Mailbox& instance()
    {
        static auto* const mailbox = new Mailbox;
        return *mailbox;
    }
    static void handler(int id, void* data, int length) { instance().put(id, data, length); }

    void clear()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_letters.clear();
        m_during = {};
    }
    /// Runs within the handler after the letter was put.
    void during(std::function<void(const Letter&)> action)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_during = std::move(action);
    }
    /// The letters, once there are at least `count`.
    std::vector<Letter> waitFor(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(lock, kLimit, [&] { return m_letters.size() >= count; }))
            << m_letters.size() << " instead of " << count << " events";
        return m_letters;
    }
    /// As the handler's caller gave them, so there are always letters enough.
    Letter at(std::size_t index)
    {
        const std::vector<Letter> letters = waitFor(index + 1);
        return index < letters.size() ? letters[index] : Letter{};
    }
    std::size_t count()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_letters.size();
    }

private:
    void put(int id, void* data, int length)
    {
        Letter letter{id, data, length, {}, std::this_thread::get_id()};
        if (data != nullptr && length > 0)
            letter.bytes.assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + length);
        std::function<void(const Letter&)> action;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_letters.push_back(letter);
            action = m_during;
            m_changed.notify_all();
        }
        if (action)
            action(letter);
    }

    std::mutex m_mutex;
    // guarded by m_mutex
    std::condition_variable m_changed;
    std::vector<Letter> m_letters;
    std::function<void(const Letter&)> m_during;
};

/// A signal between two threads of a test.
class Signal
{
public:
    void set()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_set = true;
        m_changed.notify_all();
    }
    bool wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, kLimit, [&] { return m_set; });
    }
    bool isSet()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_set;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_set = false;  // guarded by m_mutex
};

inline std::string readSetting(const char* key)
{
    char reply[256] = {};
    EXPECT_EQ(ARC_CheckModuleSetting(key, nullptr, reply, 255, nullptr), 0) << key;
    return reply;
}

}  // namespace model_test
