// zq trace status|on|off|list|write: the trace switch of the running
// program (CZqTraceSettings) and trace files (CZqTrace), which live beside
// the executable.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "diagnostics/trace.h"
#include "diagnostics/trace_settings.h"

namespace zq::app {

namespace {

struct TraceOptions {
    std::string name;
    std::vector<std::string> lines;
    DWORD level = 1;
    bool append = false, timestamps = false, json = false;
};

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

int NoVersionBlock(const std::string& command) {
    return Fail(command, "trace switch",
                "the program's version block cannot be read, so its key is unknown");
}

int Status(const TraceOptions& o) {
    CZqTraceSettings settings;
    if (!settings.Read())
        return NoVersionBlock("trace status");
    if (o.json) {
        PrintJson({{"tracing", settings.m_bTracing != 0},
                   {"level", settings.m_dwLevel},
                   {"tapi_auto_detect", settings.m_bDisableTAPIAutoDetect == 0},
                   {"folder", Text(CZqTrace::GetTraceFolder())}});
        return kExitOk;
    }
    std::printf("tracing %s, level %u; telephony auto-detection %s\n",
                settings.m_bTracing ? "on" : "off", settings.m_dwLevel,
                settings.m_bDisableTAPIAutoDetect ? "off" : "on");
    std::printf("trace files in %s\n", Text(CZqTrace::GetTraceFolder()).c_str());
    return kExitOk;
}

int Switch(const TraceOptions& o, bool on) {
    const std::string command = on ? "trace on" : "trace off";
    CZqTraceSettings settings;
    if (!settings.Read())
        return NoVersionBlock(command);
    settings.m_bTracing = on ? TRUE : FALSE;
    if (on)
        settings.m_dwLevel = o.level;
    if (!settings.Write())
        return NoVersionBlock(command);
    // Read back: registry errors show only here.
    CZqTraceSettings check;
    check.Read();
    if ((check.m_bTracing != 0) != on || (on && check.m_dwLevel != settings.GetStoredLevel())) {
        return Fail(command, "trace switch", "the switch could not be stored");
    }
    return kExitOk;
}

int List(const TraceOptions& o) {
    CStringArray entries;
    CZqTraceSettings::ListTraceFiles(entries);
    nlohmann::json out = nlohmann::json::array();
    for (INT_PTR i = 0; i < entries.GetSize(); ++i) {
        if (o.json) {
            const std::string entry = Text(entries[i]);
            const std::string path = Text(CZqTraceSettings::PathOfListEntry(entries[i]));
            const size_t open = entry.rfind('(');
            const size_t close = entry.rfind(')');
            out.push_back({{"path", path},
                           {"written", open != std::string::npos && close > open
                                           ? entry.substr(open + 1, close - open - 1)
                                           : std::string()}});
        } else {
            std::printf("%s\n", Text(entries[i]).c_str());
        }
    }
    if (o.json)
        PrintJson(out);
    return kExitOk;
}

int Write(const TraceOptions& o) {
    const std::string command = "trace write";
    if (o.level == 0 || o.level > 0xFFFF)
        return UsageError(command, "the level is 1 to 65535");
    std::vector<std::string> lines = o.lines;
    if (lines.empty()) {
        std::string line;
        while (std::getline(std::cin, line)) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            lines.push_back(line);
        }
    }
    CZqTrace trace;
    trace.SetLevel(static_cast<WORD>(o.level));
    trace.EnableTimeStamp(o.timestamps ? TRUE : FALSE);
    if (!trace.Open(ToAnsi(o.name).c_str(), o.append ? TRUE : FALSE)) {
        return Fail(
            command,
            Text(trace.GetFileName().IsEmpty() ? CZqTrace::GetTraceFolder() + "\\" +
                                                     CZqTrace::MakeFileTitle(ToAnsi(o.name).c_str())
                                               : trace.GetFileName()),
            "the trace file cannot be opened or made");
    }
    const std::string path = Text(trace.GetFileName());
    for (const std::string& line : lines) {
        // Pieces are cut at 511 characters; longer lines go in several.
        const std::string ansi = ToAnsi(line);
        for (size_t at = 0; at < ansi.size(); at += CZqTrace::kMaxPieceLength) {
            trace.Output("%s", ansi.substr(at, CZqTrace::kMaxPieceLength).c_str());
        }
        trace.Output("\r\n");
    }
    trace.Close();
    std::printf("%s\n", path.c_str());
    return kExitOk;
}

void AddTraceCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<TraceOptions>();
    CLI::App* trace = app.add_subcommand("trace", "The trace switch and trace files");
    trace->require_subcommand(1);
    SetExamples(trace, {"zq trace on --level 3", "zq trace write Session \"line one\""});

    CLI::App* status = trace->add_subcommand("status", "Show the trace switch and level");
    AddJsonFlag(status, o->json);
    SetExamples(status, {"zq trace status --json"});
    status->callback([&run, o] { run = [o] { return Status(*o); }; });

    CLI::App* on = trace->add_subcommand("on", "Switch tracing on for the suite's programs");
    on->add_option("--level", o->level, "Trace level (1 and up; 10 and up flush every line)");
    SetExamples(on, {"zq trace on", "zq trace on --level 10"});
    on->callback([&run, o] { run = [o] { return Switch(*o, true); }; });

    CLI::App* off = trace->add_subcommand("off", "Switch tracing off");
    SetExamples(off, {"zq trace off"});
    off->callback([&run, o] { run = [o] { return Switch(*o, false); }; });

    CLI::App* list =
        trace->add_subcommand("list", "List the trace files (*.TRC beside the program)");
    AddJsonFlag(list, o->json);
    SetExamples(list, {"zq trace list"});
    list->callback([&run, o] { run = [o] { return List(*o); }; });

    CLI::App* write = trace->add_subcommand(
        "write",
        "Write lines (or standard input) to the trace file of a name, with its header "
        "and footer; prints the file's path");
    write->add_option("name", o->name, "Trace name: \"Tel Line 2\" writes ZqTelLine2.TRC")
        ->required();
    write->add_option("line", o->lines, "Lines to write; standard input when none");
    write->add_flag("--append", o->append, "Append to the file (started afresh at 1 MB)");
    write->add_flag("--timestamps", o->timestamps, "Put the time since opening before each piece");
    write->add_option("--level", o->level, "Trace level of the writer");
    SetExamples(
        write, {"zq trace write Session \"ATZ\" \"OK\"", "dmesg | zq trace write --append Kernel"});
    write->callback([&run, o] { run = [o] { return Write(*o); }; });
}

}  // namespace

ZQ_COMMAND(AddTraceCommand, 75);

}  // namespace zq::app
