// zq ini get|set|delete|sections|keys: typed entries of profile (INI)
// files through CZqIniFile, which decides how each kind of value is
// written and read back.
//
// A file named without any folder (zq.ini) lives in the emulated Windows
// folder, C:\windows, as the suite's own profiles do; ./zq.ini or any path
// with a folder names that file, and DOS paths (C:\zq\zq.ini) work too.
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "settings/ini_file.h"

namespace zq::app {

namespace {

enum class Kind {
    kString,
    kInteger,
    kLong,
    kBoolean,
    kHex,
    kTime,
    kRect,
    kColor,
    kAccel,
    kPlacement,
    kTokens
};

struct IniOptions {
    std::string file, section, key;
    std::vector<std::string> values;
    std::string default_value;
    bool has_default = false;
    std::string delimiters;
    bool json = false;
    bool integer = false, long_word = false, boolean = false, hex = false, time = false,
         rect = false, color = false, accel = false, placement = false;
};

// The path handed to the profile functions: folders relative to the
// current one become absolute, bare names and DOS paths stay as they are.
std::string ProfilePath(const std::string& typed) {
    const bool dos =
        typed.find('\\') != std::string::npos || (typed.size() >= 2 && typed[1] == ':');
    if (!dos && typed.find('/') != std::string::npos && typed.front() != '/') {
        std::error_code error;
        const std::filesystem::path absolute = std::filesystem::absolute(typed, error);
        if (!error) {
            return ToAnsi(absolute.lexically_normal().string());
        }
    }
    return ToAnsi(typed);
}

const char* StatusMeaning(DWORD status) {
    switch (status) {
        case CZqIniFile::kStatusNoFileNameGiven:
            return "no file name was given";
        case CZqIniFile::kStatusNoFileName:
            return "no file name is set";
        case CZqIniFile::kStatusNoSectionGiven:
            return "no section was given";
        case CZqIniFile::kStatusNoKey:
            return "no key name was given";
        case 7:
            return "the entry is missing or empty, or the key name is over 255 characters";
        case CZqIniFile::kStatusMissingPointer:
            return "a required argument is missing";
        case CZqIniFile::kStatusTooLong:
            return "a name or value is too long for its field";
        case CZqIniFile::kStatusBufferTooSmall:
            return "the value was cut";
        case CZqIniFile::kStatusWriteFailed:
            return "the file could not be written";
        case CZqIniFile::kStatusOutOfMemory:
            return "memory ran out";
        default:
            return "the profile file reported a failure";
    }
}

std::string IniStatus(DWORD status) {
    return LocalStatus("profile", status, StatusMeaning(status));
}

Kind KindOf(const IniOptions& o) {
    if (o.integer)
        return Kind::kInteger;
    if (o.long_word)
        return Kind::kLong;
    if (o.boolean)
        return Kind::kBoolean;
    if (o.hex)
        return Kind::kHex;
    if (o.time)
        return Kind::kTime;
    if (o.rect)
        return Kind::kRect;
    if (o.color)
        return Kind::kColor;
    if (o.accel)
        return Kind::kAccel;
    if (o.placement)
        return Kind::kPlacement;
    if (!o.delimiters.empty())
        return Kind::kTokens;
    return Kind::kString;
}

// Splits values at blanks and commas into numbers; false when one is not
// a number.
bool Numbers(const std::vector<std::string>& values, std::vector<int>& numbers) {
    for (const std::string& value : values) {
        std::string field;
        auto flush = [&] {
            if (field.empty()) {
                return true;
            }
            DWORD unsigned_number = 0;
            int number = 0;
            if (ParseInteger(field, number)) {
                numbers.push_back(number);
            } else if (ParseNumber(field, unsigned_number)) {
                numbers.push_back(static_cast<int>(unsigned_number));
            } else {
                return false;
            }
            field.clear();
            return true;
        };
        for (char c : value) {
            if (c == ' ' || c == ',') {
                if (!flush())
                    return false;
            } else {
                field += c;
            }
        }
        if (!flush())
            return false;
    }
    return true;
}

// A value of any kind, as the command line gives it and as it is shown.
struct Typed {
    std::string text;
    int n = 0;
    DWORD dw = 0;
    SYSTEMTIME st{};
    RECT rc{};
    COLORREF cr = 0;
    ACCEL accel{};
    WINDOWPLACEMENT wp{};
};

size_t FieldCount(Kind kind) {
    switch (kind) {
        case Kind::kTime:
            return 8;
        case Kind::kRect:
            return 4;
        case Kind::kColor:
            return 3;
        case Kind::kAccel:
            return 3;
        case Kind::kPlacement:
            return 10;
        default:
            return 1;
    }
}

const char* KindHelp(Kind kind) {
    switch (kind) {
        case Kind::kInteger:
            return "a signed number";
        case Kind::kLong:
            return "an unsigned number (decimal, or hex after 0x)";
        case Kind::kBoolean:
            return "1, 0, true, false, yes, no, on or off";
        case Kind::kHex:
            return "a number (decimal, or hex after 0x)";
        case Kind::kTime:
            return "8 numbers: year month day-of-week day hour minute second ms";
        case Kind::kRect:
            return "4 numbers: left top right bottom";
        case Kind::kColor:
            return "3 numbers: red green blue (0 to 255), or #rrggbb";
        case Kind::kAccel:
            return "3 numbers: flags key command";
        case Kind::kPlacement:
            return "10 numbers: flags show-command min-x min-y max-x max-y left top right bottom";
        default:
            return "a text";
    }
}

bool ParseTyped(Kind kind, const std::vector<std::string>& values, Typed& out) {
    if (kind == Kind::kString || kind == Kind::kTokens) {
        if (values.size() != 1)
            return false;
        out.text = ToAnsi(values[0]);
        return true;
    }
    if (kind == Kind::kBoolean) {
        if (values.size() != 1)
            return false;
        std::string v = values[0];
        for (char& c : v)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (v == "1" || v == "true" || v == "yes" || v == "on") {
            out.n = 1;
        } else if (v == "0" || v == "false" || v == "no" || v == "off") {
            out.n = 0;
        } else {
            return false;
        }
        return true;
    }
    if (kind == Kind::kLong || kind == Kind::kHex) {
        return values.size() == 1 && ParseNumber(values[0], out.dw);
    }
    if (kind == Kind::kColor && values.size() == 1 && values[0].size() == 7 &&
        values[0][0] == '#') {
        DWORD rgb = 0;
        if (!ParseNumber("0x" + values[0].substr(1), rgb))
            return false;
        out.cr = RGB((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
        return true;
    }
    std::vector<int> n;
    if (!Numbers(values, n) || n.size() != FieldCount(kind))
        return false;
    switch (kind) {
        case Kind::kInteger:
            out.n = n[0];
            break;
        case Kind::kTime:
            out.st = {static_cast<WORD>(n[0]), static_cast<WORD>(n[1]), static_cast<WORD>(n[2]),
                      static_cast<WORD>(n[3]), static_cast<WORD>(n[4]), static_cast<WORD>(n[5]),
                      static_cast<WORD>(n[6]), static_cast<WORD>(n[7])};
            break;
        case Kind::kRect:
            out.rc = {n[0], n[1], n[2], n[3]};
            break;
        case Kind::kColor:
            for (int c : n) {
                if (c < 0 || c > 255)
                    return false;
            }
            out.cr = RGB(n[0], n[1], n[2]);
            break;
        case Kind::kAccel:
            out.accel.fVirt = static_cast<BYTE>(n[0]);
            out.accel.key = static_cast<WORD>(n[1]);
            out.accel.cmd = static_cast<WORD>(n[2]);
            break;
        case Kind::kPlacement:
            out.wp.length = sizeof(WINDOWPLACEMENT);
            out.wp.flags = static_cast<UINT>(n[0]);
            out.wp.showCmd = static_cast<UINT>(n[1]);
            out.wp.ptMinPosition = {n[2], n[3]};
            out.wp.ptMaxPosition = {n[4], n[5]};
            out.wp.rcNormalPosition = {n[6], n[7], n[8], n[9]};
            break;
        default:
            break;
    }
    return true;
}

// One call of the kind's Do... member; bRead chooses the direction.
DWORD Apply(CZqIniFile& ini, Kind kind, const char* key, BOOL read, Typed& value, Typed& result,
            CStringArray* tokens, const char* delimiters) {
    switch (kind) {
        case Kind::kString: {
            std::vector<char> buffer(CZqIniFile::kValueBufferSize, '\0');
            const DWORD status =
                ini.DoString(key, read, value.text.c_str(), read ? buffer.data() : nullptr,
                             CZqIniFile::kValueBufferSize);
            if (read)
                result.text = buffer.data();
            return status;
        }
        case Kind::kInteger:
            return ini.DoInteger(key, read, value.n, &result.n);
        case Kind::kLong:
            return ini.DoLongWord(key, read, value.dw, &result.dw);
        case Kind::kBoolean:
            return ini.DoBoolean(key, read, value.n, &result.n);
        case Kind::kHex:
            return ini.DoHexadecimal(key, read, value.dw, &result.dw);
        case Kind::kTime:
            return ini.ZqIniFileTime(key, read, &value.st, &result.st);
        case Kind::kRect:
            return ini.ZqIniFileRectangle(key, read, &value.rc, &result.rc);
        case Kind::kColor:
            return ini.ZqIniFileColor(key, read, &value.cr, &result.cr);
        case Kind::kAccel:
            return ini.ZqIniFileAccelerator(key, read, &value.accel, &result.accel);
        case Kind::kPlacement:
            return ini.ZqIniFileWindowPlacement(key, read, &value.wp, &result.wp);
        case Kind::kTokens:
            return ini.DoTokenString(key, read, value.text.c_str(), tokens, delimiters);
    }
    return 0;
}

nlohmann::json TypedJson(Kind kind, const Typed& v, const CStringArray& tokens) {
    switch (kind) {
        case Kind::kString:
            return ToUtf8(v.text);
        case Kind::kInteger:
            return v.n;
        case Kind::kLong:
            return v.dw;
        case Kind::kBoolean:
            return v.n != 0;
        case Kind::kHex:
            return v.dw;
        case Kind::kTime:
            return {v.st.wYear, v.st.wMonth,  v.st.wDayOfWeek, v.st.wDay,
                    v.st.wHour, v.st.wMinute, v.st.wSecond,    v.st.wMilliseconds};
        case Kind::kRect:
            return {v.rc.left, v.rc.top, v.rc.right, v.rc.bottom};
        case Kind::kColor:
            return {GetRValue(v.cr), GetGValue(v.cr), GetBValue(v.cr)};
        case Kind::kAccel:
            return {v.accel.fVirt, v.accel.key, v.accel.cmd};
        case Kind::kPlacement:
            return {v.wp.flags,
                    v.wp.showCmd,
                    v.wp.ptMinPosition.x,
                    v.wp.ptMinPosition.y,
                    v.wp.ptMaxPosition.x,
                    v.wp.ptMaxPosition.y,
                    v.wp.rcNormalPosition.left,
                    v.wp.rcNormalPosition.top,
                    v.wp.rcNormalPosition.right,
                    v.wp.rcNormalPosition.bottom};
        case Kind::kTokens: {
            nlohmann::json list = nlohmann::json::array();
            for (INT_PTR i = 0; i < tokens.GetSize(); ++i) {
                list.push_back(ToUtf8(static_cast<const char*>(tokens[i])));
            }
            return list;
        }
    }
    return nullptr;
}

std::string TypedText(Kind kind, const Typed& v, const CStringArray& tokens) {
    char text[64];
    switch (kind) {
        case Kind::kString:
            return ToUtf8(v.text);
        case Kind::kBoolean:
            return v.n ? "1" : "0";
        case Kind::kHex:
            std::snprintf(text, sizeof text, "0x%08X", v.dw);
            return text;
        case Kind::kTokens: {
            std::string lines;
            for (INT_PTR i = 0; i < tokens.GetSize(); ++i) {
                lines += (i ? "\n" : "") + ToUtf8(static_cast<const char*>(tokens[i]));
            }
            return lines;
        }
        default: {
            std::string joined;
            for (const nlohmann::json& n : TypedJson(kind, v, tokens)) {
                joined += (joined.empty() ? "" : " ") + n.dump();
            }
            return joined.empty() ? TypedJson(kind, v, tokens).dump() : joined;
        }
    }
}

bool OpenSection(const std::string& command, CZqIniFile& ini, const IniOptions& o, int& exit) {
    DWORD status = ini.SetFileName(ProfilePath(o.file).c_str());
    if (status == 0) {
        status = ini.SetSection(ToAnsi(o.section).c_str());
    }
    if (status != 0) {
        exit = Fail(command, o.file, IniStatus(status));
        return false;
    }
    return true;
}

int Get(const IniOptions& o) {
    const std::string command = "ini get";
    const Kind kind = KindOf(o);
    Typed fallback, result;
    if (o.has_default && !ParseTyped(kind, {o.default_value}, fallback)) {
        return UsageError(command, std::string("the default must be ") + KindHelp(kind));
    }
    CZqIniFile ini;
    int exit = kExitOk;
    if (!OpenSection(command, ini, o, exit)) {
        return exit;
    }
    CStringArray tokens;
    const std::string key = ToAnsi(o.key);
    const DWORD status =
        Apply(ini, kind, key.c_str(), TRUE, fallback, result, &tokens, o.delimiters.c_str());
    if (status == CZqIniFile::kStatusDefaultUsed && !o.has_default) {
        return Fail(command, o.file + " [" + o.section + "] " + o.key, IniStatus(status));
    }
    if (status != 0 && status != CZqIniFile::kStatusDefaultUsed) {
        return Fail(command, o.file + " [" + o.section + "] " + o.key, IniStatus(status));
    }
    if (o.json) {
        PrintJson({{"file", o.file},
                   {"section", o.section},
                   {"key", o.key},
                   {"value", TypedJson(kind, result, tokens)},
                   {"default_used", status == CZqIniFile::kStatusDefaultUsed}});
    } else {
        std::printf("%s\n", TypedText(kind, result, tokens).c_str());
    }
    return kExitOk;
}

int Set(const IniOptions& o) {
    const std::string command = "ini set";
    const Kind kind = KindOf(o);
    Typed value, unused;
    if (!ParseTyped(kind, o.values, value)) {
        return UsageError(command, std::string("the value must be ") + KindHelp(kind));
    }
    CZqIniFile ini;
    int exit = kExitOk;
    if (!OpenSection(command, ini, o, exit)) {
        return exit;
    }
    const std::string key = ToAnsi(o.key);
    const DWORD status = Apply(ini, kind, key.c_str(), FALSE, value, unused, nullptr, nullptr);
    if (status != 0) {
        return Fail(command, o.file + " [" + o.section + "] " + o.key, IniStatus(status));
    }
    ini.FlushCache();
    return kExitOk;
}

int Delete(const IniOptions& o) {
    CZqIniFile ini;
    int exit = kExitOk;
    if (!OpenSection("ini delete", ini, o, exit)) {
        return exit;
    }
    // Both always report success; the profile functions do what they can.
    if (o.key.empty()) {
        ini.DeleteSection(ToAnsi(o.section).c_str());
    } else {
        ini.DeleteEntry(ToAnsi(o.key).c_str());
    }
    ini.FlushCache();
    return kExitOk;
}

int List(const IniOptions& o, bool keys) {
    const std::string command = keys ? "ini keys" : "ini sections";
    const std::string path = ProfilePath(o.file);
    if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return Fail(command, o.file, Win32Status(GetLastError()));
    }
    CZqIniFile ini;
    DWORD status = ini.SetFileName(path.c_str());
    if (status == 0 && keys) {
        status = ini.SetSection(ToAnsi(o.section).c_str());
    }
    CStringArray names;
    if (status == 0) {
        status = keys ? ini.EnumerateKeys(&names) : ini.EnumerateSections(&names);
    }
    if (status != 0 && status != CZqIniFile::kStatusDefaultUsed) {  // 7: there are none
        return Fail(command, o.file, IniStatus(status));
    }
    if (o.json) {
        nlohmann::json list = nlohmann::json::array();
        for (INT_PTR i = 0; i < names.GetSize(); ++i) {
            list.push_back(ToUtf8(static_cast<const char*>(names[i])));
        }
        PrintJson(list);
    } else {
        for (INT_PTR i = 0; i < names.GetSize(); ++i) {
            std::printf("%s\n", ToUtf8(static_cast<const char*>(names[i])).c_str());
        }
    }
    return kExitOk;
}

void AddKindFlags(CLI::App* command, IniOptions& o) {
    auto* group = command->add_option_group("kind", "How the value is written and read");
    group->add_flag("--int", o.integer, "Signed number (\"%d\")");
    group->add_flag("--long", o.long_word, "Unsigned number (\"%lu\")");
    group->add_flag("--bool", o.boolean, "Flag, stored as 1 or 0");
    group->add_flag("--hex", o.hex, "Number stored as 0x%08lX");
    group->add_flag("--time", o.time, "Eight time fields");
    group->add_flag("--rect", o.rect, "Rectangle: left top right bottom");
    group->add_flag("--color", o.color, "Colour: red green blue");
    group->add_flag("--accel", o.accel, "Accelerator: flags key command");
    group->add_flag("--placement", o.placement, "Window placement, ten fields");
    group->require_option(0, 1);
}

void AddIniCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<IniOptions>();
    CLI::App* ini = app.add_subcommand("ini", "Typed entries of profile (INI) files");
    ini->require_subcommand(1);
    SetExamples(ini, {"zq ini set ./demo.ini Window Size --rect 0 0 640 480",
                      "zq ini get ./demo.ini Window Size --rect"});
    const char* file_help =
        "Profile file: a bare name lives in C:\\windows, ./name or a path names that file";

    CLI::App* get = ini->add_subcommand("get", "Read one entry as the given kind");
    get->add_option("file", o->file, file_help)->required();
    get->add_option("section", o->section, "Section")->required();
    get->add_option("key", o->key, "Key")->required();
    get->add_option("--default", o->default_value, "Shown when the entry is missing or empty");
    get->add_option("--tokens", o->delimiters, "Split the text at any of these characters");
    AddKindFlags(get, *o);
    AddJsonFlag(get, o->json);
    SetExamples(get, {"zq ini get ./demo.ini Modem Speed --int --default 9600",
                      "zq ini get zq.ini Colors Text --color --json"});
    get->callback([&run, o] {
        o->has_default = !o->default_value.empty();
        run = [o] { return Get(*o); };
    });

    CLI::App* set = ini->add_subcommand("set", "Write one entry as the given kind");
    set->add_option("file", o->file, file_help)->required();
    set->add_option("section", o->section, "Section")->required();
    set->add_option("key", o->key, "Key")->required();
    set->add_option("value", o->values, "Value (several numbers for the record kinds)")->required();
    AddKindFlags(set, *o);
    SetExamples(set, {"zq ini set ./demo.ini Modem Speed 19200 --int",
                      "zq ini set ./demo.ini Colors Text --color 153 102 51",
                      "zq ini set ./demo.ini Modem Init \"AT&F E0\""});
    set->callback([&run, o] { run = [o] { return Set(*o); }; });

    CLI::App* del =
        ini->add_subcommand("delete", "Delete an entry, or a section when no key is named");
    del->add_option("file", o->file, file_help)->required();
    del->add_option("section", o->section, "Section")->required();
    del->add_option("key", o->key, "Key");
    SetExamples(del, {"zq ini delete ./demo.ini Modem Speed", "zq ini delete ./demo.ini Modem"});
    del->callback([&run, o] { run = [o] { return Delete(*o); }; });

    CLI::App* sections = ini->add_subcommand("sections", "List the sections of a file");
    sections->add_option("file", o->file, file_help)->required();
    AddJsonFlag(sections, o->json);
    SetExamples(sections, {"zq ini sections ./demo.ini"});
    sections->callback([&run, o] { run = [o] { return List(*o, false); }; });

    CLI::App* keys = ini->add_subcommand("keys", "List the keys of a section");
    keys->add_option("file", o->file, file_help)->required();
    keys->add_option("section", o->section, "Section")->required();
    AddJsonFlag(keys, o->json);
    SetExamples(keys, {"zq ini keys ./demo.ini Modem --json"});
    keys->callback([&run, o] { run = [o] { return List(*o, true); }; });
}

}  // namespace

ZQ_COMMAND(AddIniCommand, 30);

}  // namespace zq::app
