// zq version FILE...: the version block of any module, ELF or Windows PE,
// read from disk through the platform's version functions.
#include <cstdio>
#include <string>
#include <vector>

#include "command.h"
#include "platform/win32.h"

namespace {

constexpr const char* kStandardNames[] = {"Comments",         "CompanyName",  "FileDescription",
                                          "FileVersion",      "InternalName", "LegalCopyright",
                                          "OriginalFilename", "ProductName",  "ProductVersion"};

std::string VersionText(DWORD most, DWORD least) {
    char text[48];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", HIWORD(most), LOWORD(most), HIWORD(least),
                  LOWORD(least));
    return text;
}

const char* FileTypeName(DWORD type) {
    switch (type) {
        case 1:
            return "application";
        case 2:
            return "library";
        case 3:
            return "driver";
        case 4:
            return "font";
        case 5:
            return "virtual device";
        case 7:
            return "static library";
        default:
            return "unknown";
    }
}

int ShowVersion(const std::string& file) {
    DWORD size = GetFileVersionInfoSizeA(file.c_str(), nullptr);
    if (size == 0) {
        std::fprintf(stderr, "zq version: %s: no version information (error %u)\n", file.c_str(),
                     GetLastError());
        return 1;
    }
    std::vector<unsigned char> block(size);
    if (!GetFileVersionInfoA(file.c_str(), 0, size, block.data())) {
        std::fprintf(stderr, "zq version: %s: cannot read the version information (error %u)\n",
                     file.c_str(), GetLastError());
        return 1;
    }
    std::printf("%s\n", file.c_str());
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    if (VerQueryValueA(block.data(), "\\", reinterpret_cast<LPVOID*>(&fixed), &length) &&
        length >= sizeof(VS_FIXEDFILEINFO)) {
        std::printf("  FileVersion (fixed)     %s\n",
                    VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS).c_str());
        std::printf("  ProductVersion (fixed)  %s\n",
                    VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS).c_str());
        std::printf("  FileFlags               0x%08X of mask 0x%08X\n", fixed->dwFileFlags,
                    fixed->dwFileFlagsMask);
        std::printf("  FileOS                  0x%08X\n", fixed->dwFileOS);
        std::printf("  FileType                %u (%s), subtype %u\n", fixed->dwFileType,
                    FileTypeName(fixed->dwFileType), fixed->dwFileSubtype);
        std::printf("  FileDate                0x%08X%08X\n", fixed->dwFileDateMS,
                    fixed->dwFileDateLS);
    }
    WORD* translations = nullptr;
    if (!VerQueryValueA(block.data(), "\\VarFileInfo\\Translation",
                        reinterpret_cast<LPVOID*>(&translations), &length) ||
        length < 4) {
        std::printf("  (no translation table)\n");
        return 0;
    }
    for (UINT i = 0; i + 4 <= length; i += 4) {
        const WORD language = translations[i / 2], code_page = translations[i / 2 + 1];
        std::printf("  Translation             0x%04X, code page %u\n", language, code_page);
        for (const char* name : kStandardNames) {
            char path[96];
            std::snprintf(path, sizeof path, "\\StringFileInfo\\%04X%04X\\%s", language, code_page,
                          name);
            char* value = nullptr;
            UINT value_length = 0;
            if (VerQueryValueA(block.data(), path, reinterpret_cast<LPVOID*>(&value),
                               &value_length) &&
                value) {
                std::printf("    %-21s %s\n", name, value_length ? value : "");
            } else {
                std::printf("    %-21s (none)\n", name);
            }
        }
    }
    return 0;
}

void AddVersionCommand(CLI::App& app, zq::app::Runner& run) {
    auto files = std::make_shared<std::vector<std::string>>();
    auto* command = app.add_subcommand(
        "version", "Show the version block of modules (ELF or Windows PE files)");
    command->add_option("file", *files, "Module, program or Windows executable (DOS or Unix path)")
        ->required();
    command->callback([&run, files] {
        run = [files] {
            int status = 0;
            for (const std::string& file : *files) {
                if (ShowVersion(file) != 0)
                    status = 1;
            }
            return status;
        };
    });
}

}  // namespace

ZQ_COMMAND(AddVersionCommand);
