// Hash maps: the CMap template and the named maps built on it
// (CMapStringToString, CMapStringToOb, CMapStringToPtr, CMapPtrToPtr,
// CMapWordToPtr, CMapWordToOb, CMapPtrToWord).
//
// Keys are compared exactly (strings case-sensitively). Iteration visits
// every entry once, in no particular order:
//
//     POSITION pos = map.GetStartPosition();   // NULL when empty
//     while (pos != NULL) {
//         map.GetNextAssoc(pos, key, value);    // pos moves on (NULL at the end)
//     }
//
// Removing the entry just returned by GetNextAssoc is allowed during an
// iteration; adding entries is not (the table may grow and reorder).
// The table starts with 17 buckets (InitHashTable chooses another size) and
// grows when it holds four entries per bucket. Maps of pointers never
// delete what they point to.
// Not safe for concurrent use without outside locking.
#pragma once

#include <type_traits>
#include <vector>

#include "framework/core/collection_helpers.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap : public CObject {
protected:
    struct CAssoc {
        CAssoc* pNext;
        UINT nHashValue;
        KEY key;
        VALUE value;
    };

public:
    explicit CMap(int nBlockSize = 10) { (void)nBlockSize; }
    ~CMap() override { RemoveAll(); }

    int GetCount() const { return count_; }
    int GetSize() const { return count_; }
    BOOL IsEmpty() const { return count_ == 0; }

    // TRUE and the value when key is present; rValue untouched otherwise.
    BOOL Lookup(ARG_KEY key, VALUE& rValue) const {
        CAssoc* assoc = Find(key, HashKey<ARG_KEY>(key));
        if (assoc == nullptr) {
            return FALSE;
        }
        rValue = assoc->value;
        return TRUE;
    }
    // The value for key, added as a default value when missing.
    VALUE& operator[](ARG_KEY key) {
        UINT hash = HashKey<ARG_KEY>(key);
        if (CAssoc* assoc = Find(key, hash)) {
            return assoc->value;
        }
        if (buckets_.empty()) {
            buckets_.assign(tableSize_, nullptr);
        }
        CAssoc* assoc = new CAssoc{nullptr, hash, KEY(key), VALUE()};
        CAssoc*& head = buckets_[hash % buckets_.size()];
        assoc->pNext = head;
        head = assoc;
        ++count_;
        if (static_cast<size_t>(count_) > buckets_.size() * 4) {
            Rehash(static_cast<UINT>(buckets_.size() * 2 + 1));
        }
        return assoc->value;
    }
    void SetAt(ARG_KEY key, ARG_VALUE newValue) {
        VALUE copy(newValue);  // newValue may live in the entry being replaced
        (*this)[key] = std::move(copy);
    }
    // TRUE when key was present.
    BOOL RemoveKey(ARG_KEY key) {
        if (buckets_.empty()) {
            return FALSE;
        }
        UINT hash = HashKey<ARG_KEY>(key);
        const Key& k = key;
        for (CAssoc** link = &buckets_[hash % buckets_.size()]; *link != nullptr;
             link = &(*link)->pNext) {
            if ((*link)->nHashValue == hash && CompareElements<KEY, Key>(&(*link)->key, &k)) {
                CAssoc* doomed = *link;
                *link = doomed->pNext;
                delete doomed;
                --count_;
                return TRUE;
            }
        }
        return FALSE;
    }
    void RemoveAll() {
        for (CAssoc*& head : buckets_) {
            for (CAssoc* assoc = head; assoc != nullptr;) {
                CAssoc* next = assoc->pNext;
                delete assoc;
                assoc = next;
            }
        }
        buckets_.clear();
        count_ = 0;
    }

    POSITION GetStartPosition() const { return count_ == 0 ? nullptr : BEFORE_START_POSITION; }
    // Writes the entry at rNextPosition into rKey and rValue and moves
    // rNextPosition on. A NULL position writes nothing.
    void GetNextAssoc(POSITION& rNextPosition, KEY& rKey, VALUE& rValue) const {
        if (rNextPosition == nullptr) {
            return;
        }
        CAssoc* assoc = rNextPosition == BEFORE_START_POSITION
                            ? FirstFrom(0)
                            : reinterpret_cast<CAssoc*>(rNextPosition);
        if (assoc == nullptr) {
            rNextPosition = nullptr;
            return;
        }
        CAssoc* next = assoc->pNext;
        if (next == nullptr) {
            next = FirstFrom(assoc->nHashValue % buckets_.size() + 1);
        }
        rNextPosition = reinterpret_cast<POSITION>(next);
        rKey = assoc->key;
        rValue = assoc->value;
    }

    UINT GetHashTableSize() const { return tableSize_; }
    // Sets the number of buckets (at least 1); entries already held are
    // redistributed.
    void InitHashTable(UINT hashSize, BOOL bAllocNow = TRUE) {
        hashSize = hashSize == 0 ? 1 : hashSize;
        if (count_ > 0) {
            Rehash(hashSize);
            return;
        }
        tableSize_ = hashSize;
        buckets_.clear();
        if (bAllocNow) {
            buckets_.assign(tableSize_, nullptr);
        }
    }

private:
    using Key = std::remove_cvref_t<ARG_KEY>;

    CAssoc* Find(ARG_KEY key, UINT hash) const {
        if (buckets_.empty()) {
            return nullptr;
        }
        const Key& k = key;
        for (CAssoc* assoc = buckets_[hash % buckets_.size()]; assoc != nullptr;
             assoc = assoc->pNext) {
            if (assoc->nHashValue == hash && CompareElements<KEY, Key>(&assoc->key, &k)) {
                return assoc;
            }
        }
        return nullptr;
    }
    CAssoc* FirstFrom(size_t bucket) const {
        for (; bucket < buckets_.size(); ++bucket) {
            if (buckets_[bucket] != nullptr) {
                return buckets_[bucket];
            }
        }
        return nullptr;
    }
    void Rehash(UINT hashSize) {
        std::vector<CAssoc*> buckets(hashSize, nullptr);
        for (CAssoc* head : buckets_) {
            for (CAssoc* assoc = head; assoc != nullptr;) {
                CAssoc* next = assoc->pNext;
                CAssoc*& slot = buckets[assoc->nHashValue % hashSize];
                assoc->pNext = slot;
                slot = assoc;
                assoc = next;
            }
        }
        buckets_.swap(buckets);
        tableSize_ = hashSize;
    }

    std::vector<CAssoc*> buckets_;  // empty until the first entry
    UINT tableSize_ = 17;
    int count_ = 0;
};

class CMapStringToString : public CMap<CString, LPCTSTR, CString, LPCTSTR> {
    DECLARE_DYNAMIC(CMapStringToString)
public:
    explicit CMapStringToString(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapStringToOb : public CMap<CString, LPCTSTR, CObject*, CObject*> {
    DECLARE_DYNAMIC(CMapStringToOb)
public:
    explicit CMapStringToOb(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapStringToPtr : public CMap<CString, LPCTSTR, void*, void*> {
    DECLARE_DYNAMIC(CMapStringToPtr)
public:
    explicit CMapStringToPtr(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapPtrToPtr : public CMap<void*, void*, void*, void*> {
    DECLARE_DYNAMIC(CMapPtrToPtr)
public:
    explicit CMapPtrToPtr(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapWordToPtr : public CMap<WORD, WORD, void*, void*> {
    DECLARE_DYNAMIC(CMapWordToPtr)
public:
    explicit CMapWordToPtr(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapWordToOb : public CMap<WORD, WORD, CObject*, CObject*> {
    DECLARE_DYNAMIC(CMapWordToOb)
public:
    explicit CMapWordToOb(int nBlockSize = 10) : CMap(nBlockSize) {}
};

class CMapPtrToWord : public CMap<void*, void*, WORD, WORD> {
    DECLARE_DYNAMIC(CMapPtrToWord)
public:
    explicit CMapPtrToWord(int nBlockSize = 10) : CMap(nBlockSize) {}
};
