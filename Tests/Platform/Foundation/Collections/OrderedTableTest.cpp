// SPDX-License-Identifier: Apache-2.0
// Tests of the hash table behind sets and dictionaries.
#include "Foundation/Collections/OrderedTable.h"

#include "Platform/Foundation/Pebble.h"

namespace {

using Table = OrderedTable<int>;

std::vector<std::pair<id, int>> contents(Table& table) {
    std::vector<std::pair<id, int>> entries;
    for (NSUInteger i = table.next(0); i != Table::kNone; i = table.next(i + 1))
        entries.emplace_back(table.entry(i).key, table.entry(i).payload);
    return entries;
}

// The table beside a plain list, with objects whose hashes collide in different ways.
class AgainstAModel {
  public:
    AgainstAModel(unsigned seed, std::uintptr_t hashes) : _random(seed) {
        for (int i = 0; i < 300; ++i)
            _pebbles.push_back(Pebble::create(i, static_cast<std::uintptr_t>(i) % hashes * 64));
    }

    void step(int addingOutOfTen) {
        Pebble* pebble = _pebbles[_random() % _pebbles.size()];
        auto inModel = std::find_if(_model.begin(), _model.end(),
                                    [&](const auto& entry) { return entry.first == pebble; });
        NSUInteger found = _table.find(pebble, Table::fold(pebble->hash()));
        ASSERT_EQ(found != Table::kNone, inModel != _model.end());
        ASSERT_TRUE(found == Table::kNone || _table.entry(found).payload == inModel->second);
        if (static_cast<int>(_random() % 10) < addingOutOfTen) {
            if (found != Table::kNone) return;
            int payload = static_cast<int>(_random() % 1000);
            _table.add(pebble, Table::fold(pebble->hash()), payload);
            _model.emplace_back(pebble, payload);
        } else if (found != Table::kNone) {
            ASSERT_EQ(_table.remove(found).key, pebble);
            _model.erase(inModel);
        }
        ASSERT_EQ(_table.count(), _model.size());
    }

    // So many steps, and then the same content.
    void run(int steps, int addingOutOfTen) {
        for (int i = 0; i < steps; ++i) step(addingOutOfTen);
        ASSERT_EQ(contents(_table), _model);
    }
    Table& table() { return _table; }
    void clear() {
        _table.removeAll();
        _model.clear();
    }

  private:
    std::mt19937 _random;
    std::vector<Retained<Pebble>> _pebbles;
    Table _table;
    std::vector<std::pair<id, int>> _model;
};

TEST(OrderedTable, DoesWhatAPlainListDoes) {
    for (std::uintptr_t hashes : {1, 7, 300})
        for (unsigned seed = 0; seed < 5 && !HasFatalFailure(); ++seed) {
            SCOPED_TRACE(::testing::Message() << hashes << " hashes, seed " << seed);
            AgainstAModel both(seed, hashes);
            for (int phase : {9, 5, 1, 8, 0, 9}) both.run(400, phase);
            Table copy;
            copy.copyFrom(both.table());
            EXPECT_EQ(contents(copy), contents(both.table()));
            both.clear();
            both.run(50, 9);
        }
}

TEST(OrderedTable, TakesFirstOutInTurnWithoutSlowingDown) {
    Table table;
    std::vector<Retained<Pebble>> pebbles;
    for (int i = 0; i < 20000; ++i) {
        pebbles.push_back(Pebble::create(i));
        table.add(pebbles.back(), Table::fold(pebbles.back()->hash()), i);
    }
    // A table that walked over the holes each time would need 10^8 steps and more.
    for (int i = 0; i < 20000; ++i) ASSERT_EQ(table.remove(table.next(0)).payload, i);
    EXPECT_EQ(table.next(0), Table::kNone);
}

TEST(OrderedTable, LookUpSurvivesAComparisonThatChangesTheTable) {
    for (int others : {2, 40}) {
        Table table;
        std::vector<Retained<Pebble>> pebbles;
        for (int i = 0; i < others; ++i) {
            pebbles.push_back(Pebble::create(i, 5));
            table.add(pebbles.back(), Table::fold(5), i);
        }
        auto probe = Pebble::create(others - 1, 5);
        bool isFirst = true;
        probe->whenCompared = [&] {
            if (std::exchange(isFirst, false)) table.removeAll();
        };
        EXPECT_EQ(table.find(probe, Table::fold(5)), Table::kNone);
    }
}

}  // namespace
