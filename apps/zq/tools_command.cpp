// zq tools list|add|remove|run: the user's Tools-menu file (CTlmFile with
// its CTlmItem records): the programs the suite's Tools menu starts.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "console.h"
#include "toolsmenu/tlm_file.h"
#include "toolsmenu/tlm_item.h"

namespace zq::app {

namespace {

struct ToolsOptions {
    std::string file;
    std::string item;  // number from 1, or menu text
    std::string text, program, arguments, folder, description;
    bool hidden = false, minimized = false, prompt = false, create = false;
    bool json = false;
};

const char* StatusMeaning(DWORD status) {
    switch (status) {
        case TLM_ERROR_PROMPT_FAILED:
            return "the argument prompt cannot be shown here";
        case TLM_ERROR_PROMPT_CANCELLED:
            return "the argument prompt was cancelled";
        case TLM_ERROR_VERSION:
            return "not a tools-menu file of this version, or a record is short";
        case TLM_ERROR_NO_PATH:
            return "no file was named";
        case TLM_ERROR_OPEN:
            return "the file cannot be opened";
        case TLM_ERROR_TOO_LONG:
            return "a text is too long for its field";
        case TLM_ERROR_NO_MEMORY:
            return "memory ran out";
        case TLM_ERROR_NOT_STARTED:
            return "the program could not be started";
        case TLM_ERROR_NO_PROGRAM:
            return "the item names no program";
        case TLM_ERROR_FILE_SHORT:
            return "not a tools-menu file: shorter than its header";
        case TLM_ERROR_HEADER_SIZE:
            return "not a tools-menu file: the header size is wrong";
        case TLM_ERROR_MAGIC:
            return "not a tools-menu file: the magic number is wrong";
        case TLM_ERROR_FILE_VERSION:
            return "the file is of another version";
        default:
            return "the file could not be read or written";
    }
}

int ToolsFail(const std::string& command, const std::string& subject, DWORD status) {
    return Fail(command, subject, LocalStatus("tools menu", status, StatusMeaning(status)));
}

// The items of a file, owned.
struct Items {
    CTlmFile file;
    CObArray array;
    ~Items() {
        for (INT_PTR i = 0; i < array.GetSize(); ++i) {
            delete array.GetAt(i);
        }
    }
    CTlmItem* At(INT_PTR i) const { return static_cast<CTlmItem*>(array.GetAt(i)); }
};

DWORD Load(const std::string& path, Items& items) {
    return items.file.LoadFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items.array,
                                   0);
}

DWORD Save(const std::string& path, Items& items) {
    return items.file.SaveFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items.array);
}

// The index of the item named by number (from 1) or menu text; -1 after
// reporting that there is none.
INT_PTR FindItem(const std::string& command, const ToolsOptions& o, const Items& items) {
    DWORD number = 0;
    if (ParseNumber(o.item, number) && number >= 1 &&
        number <= static_cast<DWORD>(items.array.GetSize())) {
        return static_cast<INT_PTR>(number) - 1;
    }
    const std::string text = ToAnsi(o.item);
    for (INT_PTR i = 0; i < items.array.GetSize(); ++i) {
        if (text == static_cast<const char*>(items.At(i)->GetDataMenuText())) {
            return i;
        }
    }
    Fail(command, o.file + " " + o.item, "no item has this number or menu text");
    return -1;
}

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

int List(const ToolsOptions& o) {
    const std::string command = "tools list";
    Items items;
    const DWORD status = Load(ToAnsi(o.file), items);
    if (status != TLM_OK)
        return ToolsFail(command, o.file, status);
    nlohmann::json out = nlohmann::json::array();
    if (!o.json) {
        std::printf("%s: %s\n", o.file.c_str(), Text(items.file.GetDescription()).c_str());
    }
    for (INT_PTR i = 0; i < items.array.GetSize(); ++i) {
        const CTlmItem* item = items.At(i);
        const DWORD flags = item->GetDataFlags();
        if (o.json) {
            out.push_back({{"number", i + 1},
                           {"text", Text(item->GetDataMenuText())},
                           {"description", Text(item->GetDataDescription())},
                           {"program", Text(item->GetDataProgramPath())},
                           {"arguments", Text(item->GetDataArguments())},
                           {"folder", Text(item->GetDataWorkingDirectory())},
                           {"shown", (flags & TLMITEM_FLAG_SHOWN) != 0},
                           {"minimized", (flags & TLMITEM_FLAG_MINIMIZED) != 0},
                           {"prompt", (flags & TLMITEM_FLAG_PROMPT) != 0}});
            continue;
        }
        std::string marks;
        if (!(flags & TLMITEM_FLAG_SHOWN))
            marks += " hidden";
        if (flags & TLMITEM_FLAG_MINIMIZED)
            marks += " minimized";
        if (flags & TLMITEM_FLAG_PROMPT)
            marks += " prompt";
        std::printf("%3d  %-31s %s %s%s%s\n", static_cast<int>(i + 1),
                    Text(item->GetDataMenuText()).c_str(), Text(item->GetDataProgramPath()).c_str(),
                    Text(item->GetDataArguments()).c_str(),
                    item->GetDataWorkingDirectory().IsEmpty()
                        ? ""
                        : (" (in " + Text(item->GetDataWorkingDirectory()) + ")").c_str(),
                    marks.empty() ? "" : (" [" + marks.substr(1) + "]").c_str());
    }
    if (o.json)
        PrintJson(out);
    return kExitOk;
}

int Add(const ToolsOptions& o) {
    const std::string command = "tools add";
    const std::string path = ToAnsi(o.file);
    Items items;
    if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        const DWORD status = Load(path, items);
        if (status != TLM_OK)
            return ToolsFail(command, o.file, status);
    }
    auto item = std::make_unique<CTlmItem>();
    DWORD status = item->SetDataMenuText(ToAnsi(o.text).c_str());
    if (status == TLM_OK)
        status = item->SetDataProgramPath(ToAnsi(o.program).c_str());
    if (status == TLM_OK)
        status = item->SetDataArguments(ToAnsi(o.arguments).c_str());
    if (status == TLM_OK)
        status = item->SetDataWorkingDirectory(ToAnsi(o.folder).c_str());
    if (status == TLM_OK && !o.description.empty()) {
        status = item->SetDataDescription(ToAnsi(o.description).c_str());
    }
    if (status != TLM_OK)
        return ToolsFail(command, o.text, status);
    DWORD flags = item->GetDataFlags();
    if (o.hidden)
        flags &= ~TLMITEM_FLAG_SHOWN;
    if (o.minimized)
        flags |= TLMITEM_FLAG_MINIMIZED;
    if (o.prompt)
        flags |= TLMITEM_FLAG_PROMPT;
    item->SetDataFlags(flags);
    items.array.Add(item.release());
    status = Save(path, items);
    return status == TLM_OK ? kExitOk : ToolsFail(command, o.file, status);
}

int Remove(const ToolsOptions& o) {
    const std::string command = "tools remove";
    const std::string path = ToAnsi(o.file);
    Items items;
    DWORD status = Load(path, items);
    if (status != TLM_OK)
        return ToolsFail(command, o.file, status);
    const INT_PTR index = FindItem(command, o, items);
    if (index < 0)
        return kExitFailed;
    delete items.At(index);
    items.array.RemoveAt(index);
    status = Save(path, items);
    return status == TLM_OK ? kExitOk : ToolsFail(command, o.file, status);
}

int Run(const ToolsOptions& o) {
    const std::string command = "tools run";
    Items items;
    DWORD status = Load(ToAnsi(o.file), items);
    if (status != TLM_OK)
        return ToolsFail(command, o.file, status);
    const INT_PTR index = FindItem(command, o, items);
    if (index < 0)
        return kExitFailed;
    status = items.At(index)->ActivateItem(nullptr);
    if (status != TLM_OK) {
        return ToolsFail(command, Text(items.At(index)->GetDataMenuText()), status);
    }
    std::printf("started %s\n", Text(items.At(index)->GetDataMenuText()).c_str());
    return kExitOk;
}

void AddToolsCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<ToolsOptions>();
    CLI::App* tools = app.add_subcommand("tools", "The Tools-menu file: programs the menu starts");
    tools->require_subcommand(1);
    SetExamples(tools, {"zq tools add tools.tlm --text Editor --program /usr/bin/vi",
                        "zq tools list tools.tlm"});
    const char* file_help = "Tools-menu file";
    const char* item_help = "Item: its number (from 1) or its menu text";

    CLI::App* list = tools->add_subcommand("list", "List the items of a file");
    list->add_option("file", o->file, file_help)->required();
    AddJsonFlag(list, o->json);
    SetExamples(list, {"zq tools list tools.tlm --json"});
    list->callback([&run, o] { run = [o] { return List(*o); }; });

    CLI::App* add = tools->add_subcommand("add", "Append an item (the file is made when missing)");
    add->add_option("file", o->file, file_help)->required();
    add->add_option("--text", o->text, "Menu text (up to 30 characters)")->required();
    add->add_option("--program", o->program, "Program to start")->required();
    add->add_option("--arguments", o->arguments, "Its arguments");
    add->add_option("--folder", o->folder, "Working folder");
    add->add_option("--description", o->description, "Status-bar description");
    add->add_flag("--hidden", o->hidden, "Keep it out of the menu");
    add->add_flag("--minimized", o->minimized, "Start it minimised");
    add->add_flag("--prompt", o->prompt, "Ask for the arguments before each start");
    SetExamples(add, {"zq tools add tools.tlm --text \"Disk usage\" --program /usr/bin/df "
                      "--arguments -h"});
    add->callback([&run, o] { run = [o] { return Add(*o); }; });

    CLI::App* remove = tools->add_subcommand("remove", "Remove an item");
    remove->add_option("file", o->file, file_help)->required();
    remove->add_option("item", o->item, item_help)->required();
    SetExamples(remove, {"zq tools remove tools.tlm 2", "zq tools remove tools.tlm Editor"});
    remove->callback([&run, o] { run = [o] { return Remove(*o); }; });

    CLI::App* start = tools->add_subcommand("run", "Start an item's program as the menu would");
    start->add_option("file", o->file, file_help)->required();
    start->add_option("item", o->item, item_help)->required();
    SetExamples(start, {"zq tools run tools.tlm \"Disk usage\""});
    start->callback([&run, o] { run = [o] { return Run(*o); }; });
}

}  // namespace

ZQ_COMMAND(AddToolsCommand, 60);

}  // namespace zq::app
