// zq reg query|set|delete|export|import: registry keys and typed values
// through the library's registry gateway (CZqGlobalConfig), trees as
// REGEDIT4 text.
//
// A key is written with its root first, full or short:
// HKEY_CURRENT_USER\Software\Zq,Inc. or HKCU\Software\Zq,Inc. The gateway
// reaches the local machine, the current user, the users and the classes
// root. The value name "@" is the key's default (unnamed) value, as in
// REGEDIT4 text.
#include <cctype>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "diagnostics/operating_system.h"
#include "settings/global_config.h"
#include "settings/regedit4.h"

namespace zq::app {

namespace {

// A key on the command line, resolved to the gateway's access mode.
struct RegKey {
    DWORD mode = 0;
    std::string root_name;  // HKEY_...
    std::string path;       // below the root, ANSI
    std::string Display() const {
        return ToUtf8(path.empty() ? root_name : root_name + "\\" + path);
    }
};

// False after a usage error for keys outside the gateway's roots.
bool ResolveKey(const std::string& command, const std::string& text, RegKey& key, int& exit) {
    HKEY root = nullptr;
    std::string root_name, sub;
    if (!zq::settings::SplitRegistryKeyPath(ToAnsi(text), root, root_name, sub)) {
        exit = UsageError(command, "'" + text +
                                       "' does not begin with a root key (HKLM, HKCU, HKU, HKCR "
                                       "or their full names)");
        return false;
    }
    const bool nt = CZqGlobalOperatingSystem::GetType() == CZqGlobalOperatingSystem::kTypeWindowsNT;
    DWORD mode = 0;
    if (root == HKEY_LOCAL_MACHINE) {
        mode = 1;
    } else if (root == HKEY_CURRENT_USER) {
        mode = 2;
    } else if (root == HKEY_USERS) {
        mode = 3;
    } else if (root == HKEY_CLASSES_ROOT) {
        // NT maps mode 5 to the classes root; elsewhere an unassigned mode does.
        mode = nt ? 5 : 7;
    } else {
        exit = UsageError(command, root_name +
                                       " is not reached through the registry gateway (it "
                                       "reaches HKLM, HKCU, HKU and HKCR)");
        return false;
    }
    key.mode = mode;
    key.root_name = root_name;
    key.path = sub;
    return true;
}

const char* TypeName(DWORD type) {
    switch (type) {
        case REG_SZ:
            return "REG_SZ";
        case REG_EXPAND_SZ:
            return "REG_EXPAND_SZ";
        case REG_BINARY:
            return "REG_BINARY";
        case REG_DWORD:
            return "REG_DWORD";
        case REG_MULTI_SZ:
            return "REG_MULTI_SZ";
        default:
            return "REG_NONE";
    }
}

bool TypeFromName(std::string name, DWORD& type) {
    for (char& c : name) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    if (name.rfind("REG_", 0) != 0) {
        name = "REG_" + name;
    }
    for (DWORD t : {DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ}, DWORD{REG_BINARY}, DWORD{REG_DWORD},
                    DWORD{REG_MULTI_SZ}}) {
        if (name == TypeName(t)) {
            type = t;
            return true;
        }
    }
    return false;
}

std::string ValueName(const std::string& typed) {
    return typed == "@" ? std::string() : ToAnsi(typed);
}

std::string ShownName(const std::string& ansi) {
    return ansi.empty() ? "@" : ToUtf8(ansi);
}

struct Value {
    std::string name;  // ANSI
    DWORD type = 0;
    std::vector<unsigned char> data;
};

// Text up to the first NUL.
std::string TextOf(const std::vector<unsigned char>& data) {
    std::string text(data.begin(), data.end());
    return text.substr(0, text.find('\0'));
}

std::vector<std::string> StringsOf(const std::vector<unsigned char>& data) {
    std::vector<std::string> strings;
    std::string current;
    for (unsigned char c : data) {
        if (c != 0) {
            current += static_cast<char>(c);
            continue;
        }
        if (current.empty()) {
            break;  // the empty string that ends the list
        }
        strings.push_back(current);
        current.clear();
    }
    if (!current.empty()) {
        strings.push_back(current);
    }
    return strings;
}

std::string HexBytes(const std::vector<unsigned char>& data) {
    std::string text;
    char byte[4];
    for (unsigned char c : data) {
        std::snprintf(byte, sizeof byte, text.empty() ? "%02x" : " %02x", c);
        text += byte;
    }
    return text;
}

DWORD DwordOf(const std::vector<unsigned char>& data) {
    DWORD value = 0;
    for (size_t i = 0; i < data.size() && i < 4; ++i) {
        value |= static_cast<DWORD>(data[i]) << (8 * i);
    }
    return value;
}

nlohmann::json ValueJson(const Value& value) {
    nlohmann::json out = {{"name", ShownName(value.name)}, {"type", TypeName(value.type)}};
    switch (value.type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            out["data"] = ToUtf8(TextOf(value.data));
            break;
        case REG_DWORD:
            out["data"] = DwordOf(value.data);
            break;
        case REG_MULTI_SZ: {
            nlohmann::json list = nlohmann::json::array();
            for (const std::string& s : StringsOf(value.data)) {
                list.push_back(ToUtf8(s));
            }
            out["data"] = list;
            break;
        }
        default:
            out["data"] = HexBytes(value.data);
            break;
    }
    return out;
}

std::string ValueText(const Value& value) {
    switch (value.type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            return ToUtf8(TextOf(value.data));
        case REG_DWORD: {
            char text[40];
            const DWORD n = DwordOf(value.data);
            std::snprintf(text, sizeof text, "0x%08x (%u)", n, n);
            return text;
        }
        case REG_MULTI_SZ: {
            std::string text;
            for (const std::string& s : StringsOf(value.data)) {
                text += text.empty() ? "" : " | ";
                text += ToUtf8(s);
            }
            return text;
        }
        default:
            return HexBytes(value.data);
    }
}

// Reads one value with its type and bytes: the gateway's status.
DWORD ReadValue(CZqGlobalConfig& config, const RegKey& key, const std::string& name, Value& value) {
    DWORD size = 0;
    DWORD status = config.GetValueSize(key.mode, key.path.c_str(), name.c_str(), size);
    if (status != 0) {
        return status;
    }
    std::vector<unsigned char> buffer(size + 1);
    DWORD type = 0, length = 0;
    status = config.GetAnyValueType(key.mode, key.path.c_str(), name.c_str(), buffer.data(),
                                    static_cast<DWORD>(buffer.size()), type, length);
    if (status != 0) {
        return status;
    }
    buffer.resize(size);
    value.name = name;
    value.type = type;
    value.data = std::move(buffer);
    return 0;
}

DWORD WINAPI CollectSubkey(void* context, const char* name) {
    static_cast<std::vector<std::string>*>(context)->push_back(name);
    return 0;
}

DWORD WINAPI CollectValueName(void* context, const char* name, void*, DWORD) {
    static_cast<std::vector<std::string>*>(context)->push_back(name);
    return 0;
}

int Query(const std::string& key_text, const std::string& name_text, bool json) {
    const std::string command = "reg query";
    RegKey key;
    int exit = kExitOk;
    if (!ResolveKey(command, key_text, key, exit)) {
        return exit;
    }
    CZqGlobalConfig config;
    if (!name_text.empty()) {
        Value value;
        const DWORD status = ReadValue(config, key, ValueName(name_text), value);
        if (status != 0) {
            return Fail(command, key.Display() + ", value " + name_text, LibraryStatus(status));
        }
        if (json) {
            nlohmann::json out = ValueJson(value);
            out["key"] = key.Display();
            PrintJson(out);
        } else {
            std::printf("%s\n", ValueText(value).c_str());
        }
        return kExitOk;
    }

    // The key must exist; the enumerations count a missing key as empty.
    if (!key.path.empty()) {
        std::string parent, leaf = key.path;
        const size_t cut = key.path.rfind('\\');
        if (cut != std::string::npos) {
            parent = key.path.substr(0, cut);
            leaf = key.path.substr(cut + 1);
        }
        BOOL exists = FALSE;
        const DWORD status = config.DoesSubkeyExist(key.mode, parent.c_str(), leaf.c_str(), exists);
        if (status != 0 || !exists) {
            return Fail(command, key.Display(),
                        LibraryStatus(status != 0 ? status : DWORD{ERROR_FILE_NOT_FOUND}));
        }
    }
    std::vector<std::string> subkeys, names;
    DWORD status = config.EnumEntries(key.mode, key.path.c_str(), CollectSubkey, &subkeys);
    if (status == 0) {
        status = config.EnumValues(key.mode, key.path.c_str(), CollectValueName, &names);
    }
    if (status != 0) {
        return Fail(command, key.Display(), LibraryStatus(status));
    }
    std::vector<Value> values;
    for (const std::string& name : names) {
        Value value;
        status = ReadValue(config, key, name, value);
        if (status != 0) {
            return Fail(command, key.Display() + ", value " + ShownName(name),
                        LibraryStatus(status));
        }
        values.push_back(std::move(value));
    }
    if (json) {
        nlohmann::json out = {{"key", key.Display()}};
        out["subkeys"] = nlohmann::json::array();
        for (const std::string& s : subkeys) {
            out["subkeys"].push_back(ToUtf8(s));
        }
        out["values"] = nlohmann::json::array();
        for (const Value& v : values) {
            out["values"].push_back(ValueJson(v));
        }
        PrintJson(out);
        return kExitOk;
    }
    std::printf("%s\n", key.Display().c_str());
    for (const Value& v : values) {
        std::printf("  %-24s %-14s %s\n", ShownName(v.name).c_str(), TypeName(v.type),
                    ValueText(v).c_str());
    }
    for (const std::string& s : subkeys) {
        std::printf("  %s\\\n", ToUtf8(s).c_str());
    }
    return kExitOk;
}

// Hex bytes in any mix of "01,02", "01 02" and "0102".
bool ParseHexBytes(const std::vector<std::string>& args, std::vector<unsigned char>& bytes) {
    std::string digits;
    for (const std::string& arg : args) {
        for (char c : arg) {
            if (c == ',' || c == ' ' || c == ':') {
                if (digits.size() % 2 != 0) {
                    return false;
                }
                continue;
            }
            if (!std::isxdigit(static_cast<unsigned char>(c))) {
                return false;
            }
            digits += c;
        }
        if (digits.size() % 2 != 0) {
            return false;
        }
    }
    for (size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return true;
}

int Set(const std::string& key_text, const std::string& name_text,
        const std::vector<std::string>& data, const std::string& type_text) {
    const std::string command = "reg set";
    RegKey key;
    int exit = kExitOk;
    if (!ResolveKey(command, key_text, key, exit)) {
        return exit;
    }
    DWORD type = REG_SZ;
    if (!TypeFromName(type_text, type)) {
        return UsageError(command, "unknown type '" + type_text +
                                       "' (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD or "
                                       "REG_BINARY)");
    }
    CZqGlobalConfig config;
    if (name_text.empty()) {
        if (!data.empty()) {
            return UsageError(command, "data without a value name");
        }
        if (key.path.empty()) {
            return UsageError(command, "a root key exists already");
        }
        const DWORD status = config.CreateKey(key.mode, key.path.c_str());
        return status == 0 ? kExitOk : Fail(command, key.Display(), LibraryStatus(status));
    }
    const std::string name = ValueName(name_text);
    const std::string subject = key.Display() + ", value " + name_text;
    DWORD status = 0;
    switch (type) {
        case REG_SZ:
        case REG_EXPAND_SZ: {
            if (data.size() != 1) {
                return UsageError(command, std::string(TypeName(type)) + " takes one text");
            }
            const std::string text = ToAnsi(data[0]);
            if (type == REG_SZ) {
                status = config.SetValue(key.mode, key.path.c_str(), name.c_str(), text.c_str());
            } else {
                std::vector<unsigned char> bytes(text.begin(), text.end());
                bytes.push_back(0);
                status =
                    config.SetAnyValueType(key.mode, key.path.c_str(), name.c_str(), bytes.data(),
                                           static_cast<DWORD>(bytes.size()), type);
            }
            break;
        }
        case REG_DWORD: {
            DWORD number = 0;
            int negative = 0;
            if (data.size() == 1 && !ParseNumber(data[0], number) &&
                ParseInteger(data[0], negative)) {
                number = static_cast<DWORD>(negative);  // stored as its 32-bit pattern
            } else if (data.size() != 1 || !ParseNumber(data[0], number)) {
                return UsageError(command, "REG_DWORD takes one number (decimal, or hex after 0x)");
            }
            status = config.SetValue(key.mode, key.path.c_str(), name.c_str(), number);
            break;
        }
        case REG_MULTI_SZ: {
            std::vector<unsigned char> bytes;
            for (const std::string& s : data) {
                if (s.empty()) {
                    return UsageError(command, "REG_MULTI_SZ cannot hold an empty string");
                }
                const std::string text = ToAnsi(s);
                bytes.insert(bytes.end(), text.begin(), text.end());
                bytes.push_back(0);
            }
            bytes.push_back(0);
            status = config.SetAnyValueType(key.mode, key.path.c_str(), name.c_str(), bytes.data(),
                                            static_cast<DWORD>(bytes.size()), type);
            break;
        }
        default: {
            std::vector<unsigned char> bytes;
            if (!ParseHexBytes(data, bytes)) {
                return UsageError(command, "REG_BINARY takes hex bytes, e.g. 01,02,ff");
            }
            if (bytes.empty()) {
                return UsageError(command,
                                  "the registry gateway writes nothing for an empty value");
            }
            status = config.SetAnyValueType(key.mode, key.path.c_str(), name.c_str(), bytes.data(),
                                            static_cast<DWORD>(bytes.size()), type);
            break;
        }
    }
    return status == 0 ? kExitOk : Fail(command, subject, LibraryStatus(status));
}

int Delete(const std::string& key_text, const std::string& name_text) {
    const std::string command = "reg delete";
    RegKey key;
    int exit = kExitOk;
    if (!ResolveKey(command, key_text, key, exit)) {
        return exit;
    }
    CZqGlobalConfig config;
    if (!name_text.empty()) {
        const DWORD status =
            config.DeleteEntry(key.mode, key.path.c_str(), ValueName(name_text).c_str());
        return status == 0
                   ? kExitOk
                   : Fail(command, key.Display() + ", value " + name_text, LibraryStatus(status));
    }
    if (key.path.empty()) {
        return UsageError(command, "a root key cannot be deleted");
    }
    const DWORD status = config.DeleteSection(key.mode, key.path.c_str(), nullptr);
    return status == 0 ? kExitOk : Fail(command, key.Display(), LibraryStatus(status));
}

std::string Regedit4Text(const zq::settings::Regedit4Result& result) {
    using zq::settings::Regedit4Status;
    std::string text = LocalStatus("REGEDIT4", static_cast<DWORD>(result.status),
                                   zq::settings::Regedit4StatusText(result.status));
    if (result.status == Regedit4Status::kKeyNotFound ||
        result.status == Regedit4Status::kRegistryError) {
        text += ": " + Win32Status(static_cast<DWORD>(result.error));
    }
    if (result.line != 0) {
        text = "line " + std::to_string(result.line) + ": " + text;
    }
    return text;
}

int Export(const std::string& key_text, const std::string& file) {
    const std::string command = "reg export";
    RegKey key;
    int exit = kExitOk;
    if (!ResolveKey(command, key_text, key, exit)) {
        return exit;
    }
    const std::string path = ToAnsi(key_text);
    if (file == "-") {
        std::string text;
        const zq::settings::Regedit4Result result = zq::settings::ExportRegedit4(path, text);
        if (!result.ok()) {
            return Fail(command, key.Display(), Regedit4Text(result));
        }
        std::fwrite(text.data(), 1, text.size(), stdout);
        return kExitOk;
    }
    const zq::settings::Regedit4Result result = zq::settings::ExportRegedit4File(path, file);
    if (!result.ok()) {
        return Fail(
            command,
            result.status == zq::settings::Regedit4Status::kFileError ? file : key.Display(),
            Regedit4Text(result));
    }
    return kExitOk;
}

int Import(const std::string& file) {
    const std::string command = "reg import";
    zq::settings::Regedit4Result result;
    if (file == "-") {
        std::string text((std::istreambuf_iterator<char>(std::cin)),
                         std::istreambuf_iterator<char>());
        result = zq::settings::ImportRegedit4(text);
    } else {
        result = zq::settings::ImportRegedit4File(file);
    }
    return result.ok() ? kExitOk : Fail(command, file, Regedit4Text(result));
}

struct RegOptions {
    std::string key;
    std::string name;
    std::string file;
    std::string type = "REG_SZ";
    std::vector<std::string> data;
    bool json = false;
};

void AddRegCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<RegOptions>();
    CLI::App* reg = app.add_subcommand(
        "reg", "Registry keys and values through the library's registry gateway");
    reg->require_subcommand(1);
    SetExamples(reg, {"zq reg set 'HKCU\\Software\\Zq,Inc.\\Demo' Greeting Hello",
                      "zq reg query 'HKCU\\Software\\Zq,Inc.\\Demo'"});
    const char* key_help = "Key, root first: HKLM, HKCU, HKU, HKCR or their full names";

    CLI::App* query =
        reg->add_subcommand("query", "List a key's values and subkeys, or show one value");
    query->add_option("key", o->key, key_help)->required();
    query->add_option("name", o->name, "Value to show (@ for the default value)");
    AddJsonFlag(query, o->json);
    SetExamples(query, {"zq reg query 'HKCU\\Software\\Zq,Inc.\\Demo'",
                        "zq reg query --json 'HKLM\\Software' Greeting"});
    query->callback([&run, o] { run = [o] { return Query(o->key, o->name, o->json); }; });

    CLI::App* set = reg->add_subcommand(
        "set", "Set a value (creating its key), or create a key when no value is named");
    set->add_option("key", o->key, key_help)->required();
    set->add_option("name", o->name, "Value name (@ for the default value)");
    set->add_option("data", o->data,
                    "The data: one text (REG_SZ, REG_EXPAND_SZ), one number, decimal or 0x hex "
                    "(REG_DWORD), hex bytes (REG_BINARY), or one text per string (REG_MULTI_SZ)");
    set->add_option("-t,--type", o->type,
                    "REG_SZ (default), REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD or REG_BINARY");
    SetExamples(set, {"zq reg set 'HKCU\\Software\\Zq,Inc.\\Demo' Greeting \"Hello world\"",
                      "zq reg set -t REG_DWORD 'HKCU\\Software\\Zq,Inc.\\Demo' Retries 0x10",
                      "zq reg set -t REG_MULTI_SZ 'HKCU\\Software\\Zq,Inc.\\Demo' Ports COM1 COM2",
                      "zq reg set -t REG_BINARY 'HKCU\\Software\\Zq,Inc.\\Demo' Blob 01,02,ff"});
    set->callback([&run, o] { run = [o] { return Set(o->key, o->name, o->data, o->type); }; });

    CLI::App* del = reg->add_subcommand(
        "delete", "Delete a value, or a key with everything below it when no value is named");
    del->add_option("key", o->key, key_help)->required();
    del->add_option("name", o->name, "Value to delete (@ for the default value)");
    SetExamples(del, {"zq reg delete 'HKCU\\Software\\Zq,Inc.\\Demo' Greeting",
                      "zq reg delete 'HKCU\\Software\\Zq,Inc.\\Demo'"});
    del->callback([&run, o] { run = [o] { return Delete(o->key, o->name); }; });

    CLI::App* exp =
        reg->add_subcommand("export", "Write a key and everything below it as REGEDIT4 text");
    exp->add_option("key", o->key, key_help)->required();
    exp->add_option("file", o->file, "File to write, - for standard output")->required();
    SetExamples(exp, {"zq reg export 'HKCU\\Software\\Zq,Inc.' zq.reg",
                      "zq reg export 'HKLM\\Software' -"});
    exp->callback([&run, o] { run = [o] { return Export(o->key, o->file); }; });

    CLI::App* imp = reg->add_subcommand("import", "Apply REGEDIT4 text to the registry");
    imp->add_option("file", o->file, "File to read, - for standard input")->required();
    SetExamples(imp, {"zq reg import zq.reg"});
    imp->callback([&run, o] { run = [o] { return Import(o->file); }; });
}

}  // namespace

ZQ_COMMAND(AddRegCommand, 20);

}  // namespace zq::app
