// Bounded reading of untrusted binary data (resource files, executables).
//
// ByteView reads little-endian integers from a span and answers false
// instead of reading past its end. ByteSource is a random-access source of
// bytes (a file on disk or a buffer); readers of executable formats use it
// so that they never need the whole file in memory. Nothing here trusts a
// length or offset taken from the data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace zq::platform::internal {

class ByteView {
public:
    ByteView() = default;
    ByteView(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

    // True when [offset, offset + length) lies inside the view.
    bool Has(size_t offset, size_t length) const {
        return offset <= size_ && length <= size_ - offset;
    }
    bool U16(size_t offset, uint16_t* out) const {
        if (!Has(offset, 2))
            return false;
        *out = static_cast<uint16_t>(data_[offset] | (data_[offset + 1] << 8));
        return true;
    }
    bool U32(size_t offset, uint32_t* out) const {
        if (!Has(offset, 4))
            return false;
        *out = static_cast<uint32_t>(data_[offset]) |
               (static_cast<uint32_t>(data_[offset + 1]) << 8) |
               (static_cast<uint32_t>(data_[offset + 2]) << 16) |
               (static_cast<uint32_t>(data_[offset + 3]) << 24);
        return true;
    }
    bool U64(size_t offset, uint64_t* out) const {
        uint32_t low = 0, high = 0;
        if (!U32(offset, &low) || !U32(offset + 4, &high))
            return false;
        *out = (static_cast<uint64_t>(high) << 32) | low;
        return true;
    }
    // The sub-view [offset, offset + length), or false when it does not fit.
    bool Slice(size_t offset, size_t length, ByteView* out) const {
        if (!Has(offset, length))
            return false;
        *out = ByteView(data_ + offset, length);
        return true;
    }

private:
    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

// Rounds up to the next multiple of four (the alignment of resource data).
inline size_t AlignFour(size_t value) {
    return (value + 3) & ~static_cast<size_t>(3);
}

class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual uint64_t Size() const = 0;
    // Reads exactly `length` bytes at `offset`; false when they are not all there.
    virtual bool ReadAt(uint64_t offset, void* out, size_t length) const = 0;

    // Reads [offset, offset + length) into `out`; false when out of range.
    bool Read(uint64_t offset, size_t length, std::vector<uint8_t>* out) const {
        if (offset > Size() || length > Size() - offset)
            return false;
        out->resize(length);
        return length == 0 || ReadAt(offset, out->data(), length);
    }
};

class MemoryByteSource : public ByteSource {
public:
    MemoryByteSource(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    uint64_t Size() const override { return size_; }
    bool ReadAt(uint64_t offset, void* out, size_t length) const override {
        if (offset > size_ || length > size_ - offset)
            return false;
        if (length != 0)
            std::memcpy(out, data_ + offset, length);
        return true;
    }

private:
    const uint8_t* data_;
    size_t size_;
};

// A regular file opened for reading. Open() sets errno-style failure
// through its result; the descriptor closes with the object.
class FileByteSource : public ByteSource {
public:
    FileByteSource() = default;
    ~FileByteSource() override;
    FileByteSource(const FileByteSource&) = delete;
    FileByteSource& operator=(const FileByteSource&) = delete;

    // 0 on success, else the errno of the failure (EISDIR for a folder).
    int Open(const std::string& unix_path);
    uint64_t Size() const override { return size_; }
    bool ReadAt(uint64_t offset, void* out, size_t length) const override;

private:
    int fd_ = -1;
    uint64_t size_ = 0;
};

}  // namespace zq::platform::internal
