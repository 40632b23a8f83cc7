// ELF section headers and the PE resource directory, read defensively.
#include "platform/posix/module/image_resources.h"

#include <cstring>
#include <string>

namespace zq::platform::internal {
namespace {

constexpr DWORD kNotFound = ERROR_RESOURCE_DATA_NOT_FOUND;
constexpr DWORD kDamaged = ERROR_BAD_FORMAT;

bool ReadView(const ByteSource& source, uint64_t offset, size_t length,
              std::vector<uint8_t>* buffer, ByteView* view) {
    if (!source.Read(offset, length, buffer))
        return false;
    *view = ByteView(buffer->data(), buffer->size());
    return true;
}

// ---- ELF ----------------------------------------------------------------

struct ElfSection {
    uint32_t name = 0;
    uint32_t type = 0;
    uint64_t offset = 0;
    uint64_t size = 0;
    uint32_t link = 0;
};

constexpr uint32_t kShtNobits = 8;
constexpr uint16_t kShnXindex = 0xFFFF;
constexpr uint32_t kMaxElfSections = 1u << 16;

bool ReadElfSectionHeader(const ByteSource& source, bool is64, uint64_t at, ElfSection* out) {
    std::vector<uint8_t> buffer;
    ByteView h;
    if (!ReadView(source, at, is64 ? 64 : 40, &buffer, &h))
        return false;
    h.U32(0, &out->name);
    h.U32(4, &out->type);
    if (is64) {
        h.U64(24, &out->offset);
        h.U64(32, &out->size);
        h.U32(40, &out->link);
    } else {
        uint32_t offset = 0, size = 0;
        h.U32(16, &offset);
        h.U32(20, &size);
        h.U32(24, &out->link);
        out->offset = offset;
        out->size = size;
    }
    return true;
}

}  // namespace

DWORD ReadElfSection(const ByteSource& source, const char* name, std::vector<uint8_t>* out) {
    std::vector<uint8_t> buffer;
    ByteView ident;
    if (!ReadView(source, 0, 16, &buffer, &ident) || std::memcmp(ident.data(),
                                                                 "\x7f"
                                                                 "ELF",
                                                                 4) != 0) {
        return kNotFound;
    }
    const bool is64 = ident.data()[4] == 2;
    if ((ident.data()[4] != 1 && !is64) || ident.data()[5] != 1)
        return kDamaged;  // little-endian only

    ByteView header;
    if (!ReadView(source, 0, is64 ? 64 : 52, &buffer, &header))
        return kDamaged;
    uint64_t section_table = 0;
    uint16_t entry_size = 0, count16 = 0, names_index16 = 0;
    if (is64) {
        header.U64(0x28, &section_table);
        header.U16(0x3A, &entry_size);
        header.U16(0x3C, &count16);
        header.U16(0x3E, &names_index16);
    } else {
        uint32_t table32 = 0;
        header.U32(0x20, &table32);
        section_table = table32;
        header.U16(0x2E, &entry_size);
        header.U16(0x30, &count16);
        header.U16(0x32, &names_index16);
    }
    const uint32_t header_size = is64 ? 64 : 40;
    if (section_table == 0)
        return kNotFound;  // no section headers (stripped of them)
    if (entry_size < header_size)
        return kDamaged;

    // Counts that do not fit the header live in section 0.
    ElfSection first;
    if (!ReadElfSectionHeader(source, is64, section_table, &first))
        return kDamaged;
    uint64_t count = count16 != 0 ? count16 : first.size;
    uint32_t names_index = names_index16 != kShnXindex ? names_index16 : first.link;
    if (count == 0 || count > kMaxElfSections || names_index >= count)
        return kDamaged;
    if (section_table > source.Size() || count * entry_size > source.Size() - section_table) {
        return kDamaged;
    }

    ElfSection names;
    if (!ReadElfSectionHeader(source, is64, section_table + names_index * entry_size, &names) ||
        names.type == kShtNobits || names.size > kMaxResourceBytes) {
        return kDamaged;
    }
    std::vector<uint8_t> name_table;
    if (!source.Read(names.offset, static_cast<size_t>(names.size), &name_table))
        return kDamaged;

    const size_t wanted = std::strlen(name);
    for (uint64_t i = 1; i < count; ++i) {
        ElfSection section;
        if (!ReadElfSectionHeader(source, is64, section_table + i * entry_size, &section))
            return kDamaged;
        if (section.name >= name_table.size() || name_table.size() - section.name < wanted + 1 ||
            std::memcmp(name_table.data() + section.name, name, wanted + 1) != 0) {
            continue;
        }
        if (section.type == kShtNobits || section.size > kMaxResourceBytes)
            return kDamaged;
        if (!source.Read(section.offset, static_cast<size_t>(section.size), out))
            return kDamaged;
        return 0;
    }
    return kNotFound;
}

// ---- PE -----------------------------------------------------------------

namespace {

struct PeSection {
    uint32_t virtual_address = 0;
    uint32_t virtual_size = 0;
    uint32_t raw_size = 0;
    uint32_t raw_offset = 0;
};

constexpr uint32_t kMaxPeSections = 96;      // the loader's own limit
constexpr uint32_t kEntryBudget = 1u << 16;  // directory entries visited in total

// File offset and readable length of `rva`; false when no section holds it.
bool RvaToFile(const std::vector<PeSection>& sections, uint32_t rva, uint64_t* offset,
               uint64_t* available) {
    for (const PeSection& s : sections) {
        uint32_t span = s.virtual_size > s.raw_size ? s.virtual_size : s.raw_size;
        if (rva < s.virtual_address || rva - s.virtual_address >= span)
            continue;
        uint32_t delta = rva - s.virtual_address;
        if (delta >= s.raw_size)
            return false;  // in the zero-filled tail: nothing on disk
        *offset = static_cast<uint64_t>(s.raw_offset) + delta;
        *available = s.raw_size - delta;
        return true;
    }
    return false;
}

class PeDirectoryWalker {
public:
    PeDirectoryWalker(const ByteSource& source, const std::vector<PeSection>& sections,
                      ByteView tree, const ResourceName* only_type, ImageResources* out)
        : source_(source), sections_(sections), tree_(tree), only_type_(only_type), out_(out) {}

    DWORD Walk() {
        std::vector<Child> types;
        if (!ReadDirectory(0, &types))
            return kDamaged;
        for (const Child& type : types) {
            if (!type.is_directory)
                continue;  // data directly under a type is meaningless
            if (only_type_ && !only_type_->Matches(type.name))
                continue;
            std::vector<Child> names;
            if (!ReadDirectory(type.offset, &names))
                return kDamaged;
            for (const Child& name : names) {
                if (!name.is_directory)
                    continue;
                std::vector<Child> languages;
                if (!ReadDirectory(name.offset, &languages))
                    return kDamaged;
                for (const Child& language : languages) {
                    if (language.is_directory || language.name.IsName())
                        continue;
                    DWORD rc = AddData(type.name, name.name, language.name.id, language.offset);
                    if (rc != 0)
                        return rc;
                }
            }
        }
        return 0;
    }

private:
    struct Child {
        ResourceName name;
        bool is_directory = false;
        uint32_t offset = 0;
    };

    bool ReadDirectory(uint32_t offset, std::vector<Child>* children) {
        uint16_t named = 0, ids = 0;
        if (!tree_.U16(offset + 12, &named) || !tree_.U16(offset + 14, &ids))
            return false;
        uint32_t count = static_cast<uint32_t>(named) + ids;
        if (count > kEntryBudget - visited_)
            return false;
        visited_ += count;
        for (uint32_t i = 0; i < count; ++i) {
            size_t at = static_cast<size_t>(offset) + 16 + static_cast<size_t>(i) * 8;
            uint32_t name_field = 0, data_field = 0;
            if (!tree_.U32(at, &name_field) || !tree_.U32(at + 4, &data_field))
                return false;
            Child child;
            if (name_field & 0x80000000u) {
                if (!ReadName(name_field & 0x7FFFFFFFu, &child.name))
                    return false;
            } else {
                child.name = ResourceName::Id(static_cast<uint16_t>(name_field));
            }
            child.is_directory = (data_field & 0x80000000u) != 0;
            child.offset = data_field & 0x7FFFFFFFu;
            children->push_back(std::move(child));
        }
        return true;
    }

    bool ReadName(uint32_t offset, ResourceName* out) {
        uint16_t length = 0;
        if (!tree_.U16(offset, &length) || length == 0 || !tree_.Has(offset + 2, length * 2u)) {
            return false;
        }
        out->id = 0;
        out->name.clear();
        for (uint16_t i = 0; i < length; ++i) {
            uint16_t unit = 0;
            tree_.U16(offset + 2 + i * 2u, &unit);
            out->name.push_back(static_cast<char16_t>(unit));
        }
        return true;
    }

    DWORD AddData(const ResourceName& type, const ResourceName& name, uint16_t language,
                  uint32_t entry_offset) {
        uint32_t rva = 0, size = 0;
        if (!tree_.U32(entry_offset, &rva) || !tree_.U32(entry_offset + 4, &size))
            return kDamaged;
        ResourceEntry entry{type, name, language, 0, size};
        if (!only_type_ || only_type_->Matches(type)) {
            uint64_t file_offset = 0, available = 0;
            if (size > kMaxResourceBytes || out_->bytes.size() + size > kMaxResourceBytes ||
                !RvaToFile(sections_, rva, &file_offset, &available) || size > available) {
                return kDamaged;
            }
            std::vector<uint8_t> data;
            if (!source_.Read(file_offset, size, &data))
                return kDamaged;
            entry.offset = out_->bytes.size();
            out_->bytes.insert(out_->bytes.end(), data.begin(), data.end());
            while (out_->bytes.size() % 4 != 0)
                out_->bytes.push_back(0);
        }
        out_->entries.push_back(std::move(entry));
        return 0;
    }

    const ByteSource& source_;
    const std::vector<PeSection>& sections_;
    ByteView tree_;
    const ResourceName* only_type_;
    ImageResources* out_;
    uint32_t visited_ = 0;
};

}  // namespace

DWORD ReadPeResources(const ByteSource& source, const ResourceName* only_type,
                      ImageResources* out) {
    std::vector<uint8_t> buffer;
    ByteView dos;
    if (!ReadView(source, 0, 64, &buffer, &dos) || dos.data()[0] != 'M' || dos.data()[1] != 'Z') {
        return kNotFound;
    }
    uint32_t pe_offset = 0;
    dos.U32(0x3C, &pe_offset);
    ByteView file_header;
    if (!ReadView(source, pe_offset, 24, &buffer, &file_header) ||
        std::memcmp(file_header.data(), "PE\0\0", 4) != 0) {
        return kNotFound;  // an MZ file without a PE header (DOS or 16-bit): no resources we read
    }
    uint16_t section_count = 0, optional_size = 0;
    file_header.U16(6, &section_count);
    file_header.U16(20, &optional_size);
    if (section_count > kMaxPeSections)
        return kDamaged;

    const uint64_t optional_at = static_cast<uint64_t>(pe_offset) + 24;
    std::vector<uint8_t> optional_buffer;
    ByteView optional;
    if (!ReadView(source, optional_at, optional_size, &optional_buffer, &optional))
        return kDamaged;
    uint16_t magic = 0;
    if (!optional.U16(0, &magic))
        return kDamaged;
    size_t count_at = 0;
    if (magic == 0x10B) {
        count_at = 92;
    } else if (magic == 0x20B) {
        count_at = 108;
    } else {
        return kDamaged;
    }
    uint32_t directory_count = 0, resource_rva = 0, resource_size = 0;
    if (!optional.U32(count_at, &directory_count))
        return kDamaged;
    if (directory_count < 3 || !optional.U32(count_at + 4 + 2 * 8, &resource_rva) ||
        !optional.U32(count_at + 4 + 2 * 8 + 4, &resource_size)) {
        return kNotFound;
    }
    if (resource_rva == 0 || resource_size == 0)
        return kNotFound;

    std::vector<PeSection> sections;
    std::vector<uint8_t> table_buffer;
    ByteView table;
    if (!ReadView(source, optional_at + optional_size, static_cast<size_t>(section_count) * 40,
                  &table_buffer, &table)) {
        return kDamaged;
    }
    for (uint16_t i = 0; i < section_count; ++i) {
        PeSection s;
        table.U32(i * 40u + 8, &s.virtual_size);
        table.U32(i * 40u + 12, &s.virtual_address);
        table.U32(i * 40u + 16, &s.raw_size);
        table.U32(i * 40u + 20, &s.raw_offset);
        sections.push_back(s);
    }

    uint64_t tree_offset = 0, available = 0;
    if (!RvaToFile(sections, resource_rva, &tree_offset, &available))
        return kDamaged;
    // The directory's stated size may be short of the names and data entries
    // it uses; read what its section holds instead, within the cap.
    uint64_t tree_size = available < kMaxResourceBytes ? available : kMaxResourceBytes;
    std::vector<uint8_t> tree_bytes;
    if (!source.Read(tree_offset, static_cast<size_t>(tree_size), &tree_bytes))
        return kDamaged;

    PeDirectoryWalker walker(source, sections, ByteView(tree_bytes.data(), tree_bytes.size()),
                             only_type, out);
    DWORD rc = walker.Walk();
    if (rc != 0)
        return rc;
    return out->entries.empty() && only_type == nullptr ? kNotFound : 0;
}

DWORD ReadImageResources(const ByteSource& source, const ResourceName* only_type,
                         ImageResources* out) {
    out->bytes.clear();
    out->entries.clear();
    DWORD rc = ReadElfSection(source, ".rsrc", &out->bytes);
    if (rc == 0) {
        if (!ParseResImage(ByteView(out->bytes.data(), out->bytes.size()), 0, &out->entries)) {
            out->entries.clear();
            return kDamaged;
        }
        return out->entries.empty() ? kNotFound : 0;
    }
    if (rc != kNotFound)
        return rc;
    std::vector<uint8_t> magic;
    if (source.Read(0, 4, &magic) && std::memcmp(magic.data(),
                                                 "\x7f"
                                                 "ELF",
                                                 4) == 0)
        return kNotFound;
    return ReadPeResources(source, only_type, out);
}

}  // namespace zq::platform::internal
