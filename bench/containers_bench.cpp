// CZqAvl against std::set with the same comparison callback: 1,000,000
// inserts of random integer keys, then 1,000,000 look-ups of random keys
// (about half of them stored), then the tree is freed.
#include <benchmark/benchmark.h>

#include <random>
#include <set>
#include <vector>

#include "containers/zq_avl.h"

namespace {

constexpr int kCount = 1000000;

INT WINAPI CompareInts(LPVOID a, LPVOID b) {
    int x = *static_cast<const int*>(a);
    int y = *static_cast<const int*>(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}

// The callback is reached through a pointer in both contenders, so neither
// gets it inlined.
ZQAVLCOMPAREPROC volatile g_compare = CompareInts;

struct Keys {
    std::vector<int> inserted;
    std::vector<int> looked_up;
    Keys() : inserted(kCount), looked_up(kCount) {
        std::mt19937 rng(20240527);
        std::uniform_int_distribution<int> key(0, 2 * kCount);
        for (int& k : inserted)
            k = key(rng);
        for (int& k : looked_up)
            k = key(rng);
    }
};

const Keys& TheKeys() {
    static const Keys keys;
    return keys;
}

// Records live in the key vectors; the tree must not free them.
class BorrowingTree : public CZqAvl {
public:
    ~BorrowingTree() override { AvlFreeTree(); }  // while the override is still ours
    void AvlDeleteUserData(LPVOID) override {}
};

void BM_ZqAvlInsertThenFind(benchmark::State& state) {
    const Keys& keys = TheKeys();
    std::vector<int> records = keys.inserted;
    std::vector<int> probes = keys.looked_up;
    for (auto _ : state) {
        BorrowingTree tree;
        ZQAVLCOMPAREPROC compare = g_compare;
        for (int& record : records) {
            SZqAVLHHEADER* node = tree.AvlNewHeader(&record);
            LPVOID existing = nullptr;
            if (tree.AvlInsertHeader(node, &existing, compare) != 0) {
                delete node;  // a duplicate key stays ours
            }
        }
        size_t found = 0;
        for (int& probe : probes) {
            SZqAVLHHEADER key{nullptr, nullptr, ZQAVL_BALANCED, &probe};
            found += tree.AvlFindNode(tree.AvlGetRoot(), &key, compare) != nullptr;
        }
        benchmark::DoNotOptimize(found);
        state.counters["found"] = static_cast<double>(found);
    }
}
BENCHMARK(BM_ZqAvlInsertThenFind)->Unit(benchmark::kMillisecond)->Iterations(5);

struct CallbackLess {
    ZQAVLCOMPAREPROC compare;
    bool operator()(int* a, int* b) const { return compare(a, b) < 0; }
};

void BM_StdSetInsertThenFind(benchmark::State& state) {
    const Keys& keys = TheKeys();
    std::vector<int> records = keys.inserted;
    std::vector<int> probes = keys.looked_up;
    for (auto _ : state) {
        std::set<int*, CallbackLess> set(CallbackLess{g_compare});
        for (int& record : records) {
            set.insert(&record);
        }
        size_t found = 0;
        for (int& probe : probes) {
            found += set.find(&probe) != set.end();
        }
        benchmark::DoNotOptimize(found);
        state.counters["found"] = static_cast<double>(found);
    }
}
BENCHMARK(BM_StdSetInsertThenFind)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
