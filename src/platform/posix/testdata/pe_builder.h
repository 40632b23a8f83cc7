// Test helper: a minimal PE32+ file whose only section holds a resource
// directory, for the readers of Windows executables. Header-only, used by
// the platform tests and fuzz seeds.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zq::platform::testing {

// type id -> name id -> language -> data
using PeResourceTree = std::map<uint16_t, std::map<uint16_t, std::map<uint16_t, std::string>>>;

inline void PutU16(std::string& out, size_t at, uint16_t value) {
    if (out.size() < at + 2)
        out.resize(at + 2);
    out[at] = static_cast<char>(value & 0xFF);
    out[at + 1] = static_cast<char>(value >> 8);
}
inline void PutU32(std::string& out, size_t at, uint32_t value) {
    PutU16(out, at, static_cast<uint16_t>(value & 0xFFFF));
    PutU16(out, at + 2, static_cast<uint16_t>(value >> 16));
}

// The .rsrc section contents for `tree`, placed at `section_rva`.
inline std::string BuildResourceSection(const PeResourceTree& tree, uint32_t section_rva) {
    std::string dirs;
    auto directory = [&](size_t count) {
        size_t at = dirs.size();
        dirs.resize(at + 16 + count * 8, '\0');
        PutU16(dirs, at + 14, static_cast<uint16_t>(count));
        return at;
    };
    struct PendingData {
        size_t entry_field;  // where the data entry's offset goes
        const std::string* data;
    };
    std::vector<PendingData> pending;
    size_t root = directory(tree.size());
    size_t type_index = 0;
    for (const auto& [type, names] : tree) {
        size_t type_dir = directory(names.size());
        PutU32(dirs, root + 16 + type_index * 8, type);
        PutU32(dirs, root + 16 + type_index * 8 + 4, 0x80000000u | static_cast<uint32_t>(type_dir));
        ++type_index;
        size_t name_index = 0;
        for (const auto& [name, languages] : names) {
            size_t name_dir = directory(languages.size());
            PutU32(dirs, type_dir + 16 + name_index * 8, name);
            PutU32(dirs, type_dir + 16 + name_index * 8 + 4,
                   0x80000000u | static_cast<uint32_t>(name_dir));
            ++name_index;
            size_t language_index = 0;
            for (const auto& [language, data] : languages) {
                PutU32(dirs, name_dir + 16 + language_index * 8, language);
                pending.push_back({name_dir + 16 + language_index * 8 + 4, &data});
                ++language_index;
            }
        }
    }
    // Data entries, then the data itself.
    size_t entries_at = dirs.size();
    dirs.resize(entries_at + pending.size() * 16, '\0');
    for (size_t i = 0; i < pending.size(); ++i) {
        size_t entry = entries_at + i * 16;
        PutU32(dirs, pending[i].entry_field, static_cast<uint32_t>(entry));
        size_t data_at = (dirs.size() + 3) & ~static_cast<size_t>(3);
        dirs.resize(data_at, '\0');
        dirs += *pending[i].data;
        PutU32(dirs, entry, section_rva + static_cast<uint32_t>(data_at));
        PutU32(dirs, entry + 4, static_cast<uint32_t>(pending[i].data->size()));
    }
    return dirs;
}

// A whole PE32+ file: DOS header, PE headers, one ".rsrc" section at
// RVA 0x1000, file offset 0x200.
inline std::string BuildPeFile(const PeResourceTree& tree) {
    const uint32_t section_rva = 0x1000;
    std::string section = BuildResourceSection(tree, section_rva);
    std::string file(0x200, '\0');
    file[0] = 'M';
    file[1] = 'Z';
    PutU32(file, 0x3C, 0x40);
    file.replace(0x40, 4, std::string("PE\0\0", 4));
    const size_t coff = 0x44;
    PutU16(file, coff + 0, 0x8664);   // machine
    PutU16(file, coff + 2, 1);        // sections
    PutU16(file, coff + 16, 240);     // optional header size
    PutU16(file, coff + 18, 0x2022);  // DLL, executable, large addresses
    const size_t optional = coff + 20;
    PutU16(file, optional + 0, 0x20B);
    PutU32(file, optional + 108, 16);  // data directories
    PutU32(file, optional + 112 + 2 * 8, section_rva);
    PutU32(file, optional + 112 + 2 * 8 + 4, static_cast<uint32_t>(section.size()));
    const size_t table = optional + 240;
    file.replace(table, 6, ".rsrc\0", 6);
    const uint32_t raw_size =
        static_cast<uint32_t>((section.size() + 0x1FF) & ~static_cast<size_t>(0x1FF));
    PutU32(file, table + 8, static_cast<uint32_t>(section.size()));
    PutU32(file, table + 12, section_rva);
    PutU32(file, table + 16, raw_size);
    PutU32(file, table + 20, 0x200);
    section.resize(raw_size, '\0');
    return file + section;
}

}  // namespace zq::platform::testing
