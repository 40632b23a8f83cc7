// zq xlat new|show|set|apply: translation-table files (CGblTranslate),
// the byte tables a connection's incoming (input) and outgoing (output)
// bytes pass through.
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "translate/gbl_translate.h"

namespace zq::app {

namespace {

struct XlatOptions {
    std::string file;
    std::string description;
    std::vector<std::string> input_pairs, output_pairs;
    std::string get, put;  // "on" / "off" / ""
    bool output = false;
    bool reset = false;
    bool json = false;
};

const char* StatusMeaning(DWORD status) {
    switch (status) {
        case GBLXLT_ERROR_NO_PATH:
            return "no file was named";
        case GBLXLT_ERROR_OPEN:
            return "the file cannot be opened or read";
        case GBLXLT_ERROR_WRITE:
            return "the file could not be written whole";
        case GBLXLT_ERROR_FILE_SIZE:
            return "not a translation table: the file is not 608 bytes long";
        case GBLXLT_ERROR_TRAILER_SIZE:
            return "not a translation table: the trailer size is wrong";
        case GBLXLT_ERROR_MAGIC:
            return "not a translation table: the magic number is wrong";
        case GBLXLT_ERROR_VERSION:
            return "the table is of a newer version";
        default:
            return "the translation table reported a failure";
    }
}

int XlatFail(const std::string& command, const std::string& file, DWORD status) {
    return Fail(command, file, LocalStatus("translation table", status, StatusMeaning(status)));
}

// A byte on the command line: one character stands for itself, longer
// text is a number (decimal, or hex after 0x) up to 255.
bool ParseByte(const std::string& text, BYTE& byte) {
    const std::string ansi = ToAnsi(text);
    if (ansi.size() == 1) {
        byte = static_cast<BYTE>(ansi[0]);
        return true;
    }
    DWORD number = 0;
    if (!ParseNumber(text, number) || number > 255) {
        return false;
    }
    byte = static_cast<BYTE>(number);
    return true;
}

bool ParsePair(const std::string& pair, BYTE& from, BYTE& to) {
    // The last '=' splits, so "==x" maps '=' to 'x'.
    const size_t cut = pair.rfind('=');
    if (cut == std::string::npos || cut == 0 || cut + 1 >= pair.size()) {
        return false;
    }
    return ParseByte(pair.substr(0, cut), from) && ParseByte(pair.substr(cut + 1), to);
}

bool ParseSwitch(const std::string& text, bool& on) {
    if (text == "on") {
        on = true;
    } else if (text == "off") {
        on = false;
    } else {
        return false;
    }
    return true;
}

std::string ByteText(BYTE b) {
    char text[16];
    if (b >= 0x21 && b < 0x7F) {
        std::snprintf(text, sizeof text, "0x%02X '%c'", b, b);
    } else {
        std::snprintf(text, sizeof text, "0x%02X", b);
    }
    return text;
}

// Applies the switches, pairs and description of the options.
int Change(const std::string& command, CGblTranslate& table, const XlatOptions& o) {
    bool on = false;
    if (!o.get.empty()) {
        if (!ParseSwitch(o.get, on))
            return UsageError(command, "--get takes on or off");
        table.EnableGet(on);
    }
    if (!o.put.empty()) {
        if (!ParseSwitch(o.put, on))
            return UsageError(command, "--put takes on or off");
        table.EnablePut(on);
    }
    for (const std::string& pair : o.input_pairs) {
        BYTE from = 0, to = 0;
        if (!ParsePair(pair, from, to)) {
            return UsageError(command, "'" + pair + "' is not FROM=TO (a character or a number)");
        }
        table.SetInputValue(from, to);
    }
    for (const std::string& pair : o.output_pairs) {
        BYTE from = 0, to = 0;
        if (!ParsePair(pair, from, to)) {
            return UsageError(command, "'" + pair + "' is not FROM=TO (a character or a number)");
        }
        table.SetOutputValue(from, to);
    }
    if (!o.description.empty()) {
        table.SetDescription(ToAnsi(o.description).c_str());
    }
    return kExitOk;
}

int New(const XlatOptions& o) {
    const std::string command = "xlat new";
    CGblTranslate table;
    if (const int exit = Change(command, table, o); exit != kExitOk)
        return exit;
    const DWORD status = table.Save(ToAnsi(o.file).c_str());
    return status == GBLXLT_OK ? kExitOk : XlatFail(command, o.file, status);
}

int Set(const XlatOptions& o) {
    const std::string command = "xlat set";
    CGblTranslate table;
    DWORD status = table.Load(ToAnsi(o.file).c_str());
    if (status != GBLXLT_OK)
        return XlatFail(command, o.file, status);
    if (o.reset) {
        table.ResetGetTable();
        table.ResetPutTable();
    }
    if (const int exit = Change(command, table, o); exit != kExitOk)
        return exit;
    status = table.Save(nullptr);
    return status == GBLXLT_OK ? kExitOk : XlatFail(command, o.file, status);
}

int Show(const XlatOptions& o) {
    const std::string command = "xlat show";
    CGblTranslate table;
    const DWORD status = table.Load(ToAnsi(o.file).c_str());
    if (status != GBLXLT_OK)
        return XlatFail(command, o.file, status);
    nlohmann::json input = nlohmann::json::object(), output = nlohmann::json::object();
    for (int b = 0; b < 256; ++b) {
        const BYTE i = table.GetInputValue(static_cast<BYTE>(b));
        const BYTE p = table.GetOutputValue(static_cast<BYTE>(b));
        if (i != b)
            input[std::to_string(b)] = i;
        if (p != b)
            output[std::to_string(b)] = p;
    }
    const std::string description = ToUtf8(static_cast<const char*>(table.GetDescription()));
    if (o.json) {
        PrintJson({{"file", o.file},
                   {"description", description},
                   {"get", table.IsGetEnabled() != 0},
                   {"put", table.IsPutEnabled() != 0},
                   {"get_double_byte", table.IsGetDBCSEnabled() != 0},
                   {"put_double_byte", table.IsPutDBCSEnabled() != 0},
                   {"input", input},
                   {"output", output}});
        return kExitOk;
    }
    std::printf("%s: %s\n", o.file.c_str(), description.c_str());
    std::printf("  input (get)   %s, %zu byte(s) changed\n", table.IsGetEnabled() ? "on" : "off",
                input.size());
    for (auto& [from, to] : input.items()) {
        std::printf("    %-10s -> %s\n", ByteText(static_cast<BYTE>(std::stoi(from))).c_str(),
                    ByteText(to.get<BYTE>()).c_str());
    }
    std::printf("  output (put)  %s, %zu byte(s) changed\n", table.IsPutEnabled() ? "on" : "off",
                output.size());
    for (auto& [from, to] : output.items()) {
        std::printf("    %-10s -> %s\n", ByteText(static_cast<BYTE>(std::stoi(from))).c_str(),
                    ByteText(to.get<BYTE>()).c_str());
    }
    return kExitOk;
}

int Apply(const XlatOptions& o) {
    const std::string command = "xlat apply";
    CGblTranslate table;
    const DWORD status = table.Load(ToAnsi(o.file).c_str());
    if (status != GBLXLT_OK)
        return XlatFail(command, o.file, status);
    std::vector<char> buffer(64 * 1024);
    size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), stdin)) > 0) {
        for (size_t i = 0; i < got; ++i) {
            const BYTE b = static_cast<BYTE>(buffer[i]);
            buffer[i] = static_cast<char>(o.output ? table.DoPut(b) : table.DoGet(b));
        }
        if (std::fwrite(buffer.data(), 1, got, stdout) != got) {
            return Fail(command, "standard output", Win32Status(ERROR_WRITE_FAULT));
        }
    }
    return kExitOk;
}

void AddChangeOptions(CLI::App* command, XlatOptions& o) {
    command->add_option("-i,--input", o.input_pairs,
                        "FROM=TO in the input (get) table; a character or a number each");
    command->add_option("-o,--output", o.output_pairs, "FROM=TO in the output (put) table");
    command->add_option("--get", o.get, "Input translation on or off");
    command->add_option("--put", o.put, "Output translation on or off");
    command->add_option("-d,--description", o.description, "Description (up to 63 characters)");
}

void AddXlatCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<XlatOptions>();
    CLI::App* xlat = app.add_subcommand("xlat", "Translation-table files of connections");
    xlat->require_subcommand(1);
    SetExamples(xlat, {"zq xlat new upper.xlt --get on -i a=A -i b=B",
                       "echo abc | zq xlat apply upper.xlt"});
    const char* file_help = "Translation-table file (608 bytes)";

    CLI::App* make = xlat->add_subcommand("new", "Write a new table: identity unless changed");
    make->add_option("file", o->file, file_help)->required();
    AddChangeOptions(make, *o);
    SetExamples(make, {"zq xlat new umlaut.xlt --put on -o 0xE4=a -d \"Plain letters\""});
    make->callback([&run, o] { run = [o] { return New(*o); }; });

    CLI::App* show = xlat->add_subcommand("show", "Show a table's switches and changed bytes");
    show->add_option("file", o->file, file_help)->required();
    AddJsonFlag(show, o->json);
    SetExamples(show, {"zq xlat show umlaut.xlt", "zq xlat show --json umlaut.xlt"});
    show->callback([&run, o] { run = [o] { return Show(*o); }; });

    CLI::App* set = xlat->add_subcommand("set", "Change entries and switches of a table");
    set->add_option("file", o->file, file_help)->required();
    AddChangeOptions(set, *o);
    set->add_flag("--reset", o->reset, "Make both tables identity first");
    SetExamples(set, {"zq xlat set umlaut.xlt -i 0x0D=0x0A --get on"});
    set->callback([&run, o] { run = [o] { return Set(*o); }; });

    CLI::App* apply = xlat->add_subcommand(
        "apply", "Translate standard input to standard output through a table");
    apply->add_option("file", o->file, file_help)->required();
    apply->add_flag("--output", o->output,
                    "Use the output (put) table instead of the input (get) table");
    SetExamples(apply, {"echo hello | zq xlat apply upper.xlt",
                        "zq xlat apply --output umlaut.xlt < in.txt > out.txt"});
    apply->callback([&run, o] { run = [o] { return Apply(*o); }; });
}

}  // namespace

ZQ_COMMAND(AddXlatCommand, 50);

}  // namespace zq::app
