#include "task/TaskStore.h"

#include <gmock/gmock.h>
#include <list>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using testing::ElementsAre;

namespace {

template <typename Store>
std::vector<std::string> contents(const Store& store)
{
    return {store.begin(), store.end()};
}

TEST(TaskStore, KeepsTheOrderThatInsertionsGiveIt)
{
    task::TaskStore<4, std::string> store;
    store.emplace(0, "b");
    store.emplace(1, "d");
    store.emplace(0, "a");
    store.emplace(2, "c");
    EXPECT_THAT(contents(store), ElementsAre("a", "b", "c", "d"));
    EXPECT_TRUE(store.full());
    EXPECT_EQ(store.front(), "a");
    EXPECT_EQ(store[3], "d");
    EXPECT_EQ(store[2], "c");
}

TEST(TaskStore, BehavesLikeAListUnderAnyMixOfInsertionsAndRemovals)
{
    task::TaskStore<7, std::string> store;
    std::list<std::string> model;
    std::mt19937 random(42);
    for (int step = 0; step < 5000; ++step) {
        if (model.size() < 7 && (model.empty() || random() % 2 == 0)) {
            const std::size_t position = random() % (model.size() + 1);
            const std::string value = "record number " + std::to_string(step) + " of the long walk";
            store.emplace(position, value);
            model.insert(std::next(model.begin(), static_cast<std::ptrdiff_t>(position)), value);
        } else {
            store.pop_front();
            model.pop_front();
        }
        ASSERT_EQ(store.size(), model.size());
        ASSERT_EQ(store.empty(), model.empty());
        ASSERT_EQ(store.full(), model.size() == 7);
        ASSERT_THAT(contents(store), testing::ElementsAreArray(model));
    }
}

TEST(TaskStore, CanBeWalkedBothWays)
{
    task::TaskStore<3, std::string> store;
    store.emplace(0, "a");
    store.emplace(1, "b");
    auto step = store.begin();
    EXPECT_EQ(*step++, "a");
    EXPECT_EQ(step->size(), 1u);
    EXPECT_EQ(*step--, "b");
    EXPECT_EQ(*step, "a");
    EXPECT_EQ(*++step, "b");
    EXPECT_EQ(*--step, "a");
    EXPECT_TRUE(++ ++step == store.end());
}

TEST(TaskStore, IsUnchangedWhenARecordCannotBeConstructed)
{
    struct Picky
    {
        explicit Picky(int number) : value(number)
        {
            if (number < 0)
                throw std::invalid_argument("negative");
        }
        int value;
    };
    task::TaskStore<3, Picky> store;
    store.emplace(0, 1);
    EXPECT_THROW(store.emplace(0, -1), std::invalid_argument);
    ASSERT_EQ(store.size(), 1u);
    store.emplace(1, 2);
    EXPECT_EQ(store.front().value, 1);
    EXPECT_EQ(store[1].value, 2);
}

/// The last text of a full store that was filled with the numbers from 0.
template <std::size_t N>
std::string lastOfFull()
{
    task::TaskStore<N, std::string> store;
    for (std::size_t i = 0; i < N; ++i)
        store.emplace(i, std::to_string(i));
    EXPECT_EQ(store.front(), "0");
    return store[N - 1];
}

TEST(TaskStore, HoldsMoreRecordsThanAByteCanCount)
{
    task::TaskStore<300, std::string> store;
    for (int i = 0; i < 300; ++i)
        store.emplace(0, std::to_string(i));
    EXPECT_TRUE(store.full());
    for (int i = 299; i >= 0; --i) {
        ASSERT_EQ(store.front(), std::to_string(i));
        store.pop_front();
    }
}

TEST(TaskStore, HoldsAsManyRecordsAsAByteCanCountAndOneMore)
{
    EXPECT_EQ(lastOfFull<256>(), "255");
    EXPECT_EQ(lastOfFull<257>(), "256");
}

TEST(TaskStore, IsNeitherCopiedNorMoved)
{
    using Store = task::TaskStore<4, std::string>;
    EXPECT_FALSE(std::is_copy_constructible_v<Store>);
    EXPECT_FALSE(std::is_copy_assignable_v<Store>);
    EXPECT_FALSE(std::is_move_constructible_v<Store>);
    EXPECT_FALSE(std::is_move_assignable_v<Store>);
}

TEST(TaskStore, DestroysWhatIsLeftFrontToBack)
{
    std::vector<int> destroyed;
    struct Mourned
    {
        Mourned(int label, std::vector<int>& list) : number(label), deaths(list) {}
        ~Mourned() { deaths.push_back(number); }
        int number;
        std::vector<int>& deaths;
    };
    {
        task::TaskStore<4, Mourned> store;
        store.emplace(0, 3, destroyed);
        store.emplace(0, 1, destroyed);
        store.emplace(1, 2, destroyed);
    }
    EXPECT_THAT(destroyed, ElementsAre(1, 2, 3));
}

}  // namespace
