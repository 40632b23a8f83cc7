// Per-thread maps from user-interface handles to their framework objects.
//
// A permanent entry is an object that attached the handle; a temporary one
// is made by FromHandle for a handle nobody attached on this thread, and
// deleted (after its handle field is cleared, so it destroys nothing) by
// DeleteTemporary or at the end of the thread.
#pragma once

#include <unordered_map>

namespace zq::framework {

template <typename Handle, typename Object, Handle Object::*kField>
class HandleMap {
public:
    HandleMap() = default;
    HandleMap(const HandleMap&) = delete;
    HandleMap& operator=(const HandleMap&) = delete;
    ~HandleMap() { DeleteTemporary(); }

    // The permanent object, else a temporary one (made now if needed); NULL
    // for a NULL handle or when no object can be made.
    Object* FromHandle(Handle handle) {
        if (handle == nullptr) {
            return nullptr;
        }
        if (Object* object = LookupPermanent(handle)) {
            return object;
        }
        auto it = temporary_.find(handle);
        if (it != temporary_.end()) {
            return it->second;
        }
        Object* object = new Object;
        object->*kField = handle;
        temporary_.emplace(handle, object);
        return object;
    }

    Object* LookupPermanent(Handle handle) const {
        auto it = permanent_.find(handle);
        return it == permanent_.end() ? nullptr : it->second;
    }

    void SetPermanent(Handle handle, Object* object) {
        permanent_[handle] = object;
        // A temporary object for the handle would now shadow nothing; drop it.
        auto it = temporary_.find(handle);
        if (it != temporary_.end()) {
            it->second->*kField = nullptr;
            delete it->second;
            temporary_.erase(it);
        }
    }

    void RemovePermanent(Handle handle) { permanent_.erase(handle); }

    void DeleteTemporary() {
        auto doomed = std::move(temporary_);
        temporary_.clear();
        for (auto& entry : doomed) {
            entry.second->*kField = nullptr;
            delete entry.second;
        }
    }

private:
    std::unordered_map<Handle, Object*> permanent_;
    std::unordered_map<Handle, Object*> temporary_;
};

}  // namespace zq::framework
