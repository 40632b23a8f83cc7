// zq version FILE...: the version block of any module, ELF or Windows PE,
// read from disk through the platform's version functions.
#include <cstdio>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "platform/win32.h"

namespace zq::app {

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

std::string Hex(DWORD value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

const char* FileTypeName(DWORD type) {
    switch (type) {
        case VFT_APP:
            return "application";
        case VFT_DLL:
            return "library";
        case VFT_DRV:
            return "driver";
        case VFT_FONT:
            return "font";
        case VFT_VXD:
            return "virtual device";
        case VFT_STATIC_LIB:
            return "static library";
        default:
            return "unknown";
    }
}

// The block of one file as JSON (strings in UTF-8); false after reporting
// why there is none.
bool ReadVersion(const std::string& file, nlohmann::json& out) {
    const std::string ansi = ToAnsi(file);
    const DWORD size = GetFileVersionInfoSizeA(ansi.c_str(), nullptr);
    if (size == 0) {
        Fail("version", file, Win32Status(GetLastError()));
        return false;
    }
    std::vector<unsigned char> block(size);
    if (!GetFileVersionInfoA(ansi.c_str(), 0, size, block.data())) {
        Fail("version", file, Win32Status(GetLastError()));
        return false;
    }
    out = {{"file", file}};
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    if (VerQueryValueA(block.data(), "\\", reinterpret_cast<LPVOID*>(&fixed), &length) &&
        length >= sizeof(VS_FIXEDFILEINFO)) {
        out["fixed"] = {
            {"file_version", VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS)},
            {"product_version", VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS)},
            {"file_flags", fixed->dwFileFlags},
            {"file_flags_mask", fixed->dwFileFlagsMask},
            {"file_os", fixed->dwFileOS},
            {"file_type", fixed->dwFileType},
            {"file_type_name", FileTypeName(fixed->dwFileType)},
            {"file_subtype", fixed->dwFileSubtype},
            {"file_date", (static_cast<uint64_t>(fixed->dwFileDateMS) << 32) | fixed->dwFileDateLS},
        };
    }
    nlohmann::json translations = nlohmann::json::array();
    WORD* table = nullptr;
    if (VerQueryValueA(block.data(), "\\VarFileInfo\\Translation",
                       reinterpret_cast<LPVOID*>(&table), &length) &&
        table) {
        for (UINT i = 0; i + 4 <= length; i += 4) {
            const WORD language = table[i / 2], code_page = table[i / 2 + 1];
            nlohmann::json strings = nlohmann::json::object();
            for (const char* name : kStandardNames) {
                char path[96];
                std::snprintf(path, sizeof path, "\\StringFileInfo\\%04X%04X\\%s", language,
                              code_page, name);
                char* value = nullptr;
                UINT value_length = 0;
                if (VerQueryValueA(block.data(), path, reinterpret_cast<LPVOID*>(&value),
                                   &value_length) &&
                    value) {
                    strings[name] = ToUtf8(value_length ? value : "");
                }
            }
            translations.push_back(
                {{"language", language}, {"code_page", code_page}, {"strings", strings}});
        }
    }
    out["translations"] = translations;
    return true;
}

void PrintVersion(const nlohmann::json& v) {
    std::printf("%s\n", v["file"].get<std::string>().c_str());
    if (v.contains("fixed")) {
        const nlohmann::json& f = v["fixed"];
        std::printf("  FileVersion (fixed)     %s\n", f["file_version"].get<std::string>().c_str());
        std::printf("  ProductVersion (fixed)  %s\n",
                    f["product_version"].get<std::string>().c_str());
        std::printf("  FileFlags               %s of mask %s\n",
                    Hex(f["file_flags"].get<DWORD>()).c_str(),
                    Hex(f["file_flags_mask"].get<DWORD>()).c_str());
        std::printf("  FileOS                  %s\n", Hex(f["file_os"].get<DWORD>()).c_str());
        std::printf("  FileType                %u (%s), subtype %u\n", f["file_type"].get<DWORD>(),
                    f["file_type_name"].get<std::string>().c_str(), f["file_subtype"].get<DWORD>());
        const uint64_t date = f["file_date"].get<uint64_t>();
        std::printf("  FileDate                0x%08X%08X\n", static_cast<DWORD>(date >> 32),
                    static_cast<DWORD>(date));
    }
    if (v["translations"].empty()) {
        std::printf("  (no translation table)\n");
    }
    for (const nlohmann::json& t : v["translations"]) {
        std::printf("  Translation             0x%04X, code page %u\n", t["language"].get<WORD>(),
                    t["code_page"].get<WORD>());
        for (const char* name : kStandardNames) {
            const nlohmann::json& strings = t["strings"];
            std::printf(
                "    %-21s %s\n", name,
                strings.contains(name) ? strings[name].get<std::string>().c_str() : "(none)");
        }
    }
}

int ShowVersions(const std::vector<std::string>& files, bool json) {
    int status = kExitOk;
    nlohmann::json all = nlohmann::json::array();
    for (const std::string& file : files) {
        nlohmann::json one;
        if (!ReadVersion(file, one)) {
            status = kExitFailed;
            continue;
        }
        if (json) {
            all.push_back(one);
        } else {
            PrintVersion(one);
        }
    }
    if (json) {
        PrintJson(all);
    }
    return status;
}

void AddVersionCommand(CLI::App& app, Runner& run) {
    auto files = std::make_shared<std::vector<std::string>>();
    auto json = std::make_shared<bool>(false);
    CLI::App* command = app.add_subcommand(
        "version", "Show the version block of modules (ELF or Windows PE files)");
    command->add_option("file", *files, "Module, program or Windows executable (DOS or Unix path)")
        ->required();
    AddJsonFlag(command, *json);
    SetExamples(command,
                {"zq version build/default/bin/zq", "zq version --json 'C:\\zq\\fax.exe'"});
    command->callback(
        [&run, files, json] { run = [files, json] { return ShowVersions(*files, *json); }; });
}

}  // namespace

ZQ_COMMAND(AddVersionCommand, 70);

}  // namespace zq::app
