// zq mailboxes list|add|remove|default|path: the suite's numbered mailboxes
// (CZqRegMailBoxes) and the folders of their messages.
#include <cstdio>
#include <string>

#include "command.h"
#include "console.h"
#include "modules/reg_mail_boxes.h"

namespace zq::app {

namespace {

struct MailBoxOptions {
    DWORD number = 0;
    std::string name;
    std::string folder = "mailbox";
    bool json = false;
    CLI::Option* number_option = nullptr;
};

std::string Text(const CString& s) {
    return ToUtf8(static_cast<const char*>(s));
}

int NoVersionBlock(const std::string& command) {
    return Fail(command, "mailboxes",
                "the program's version block cannot be read, so its key is unknown");
}

// Writes the list back and keeps the stored default, which a write drops.
int WriteKeepingDefault(const std::string& command, CZqRegMailBoxes& boxes, DWORD default_box) {
    if (!boxes.Write())
        return NoVersionBlock(command);
    if (boxes.GetByNumber(default_box) == nullptr) {
        tagREGMAILBOXSTRUCT* first = boxes.GetDefault();
        default_box = first != nullptr ? first->m_dwNumber : 0;
    }
    if (boxes.GetSize() > 0)
        boxes.SetUserDefault(default_box);
    return kExitOk;
}

int List(const MailBoxOptions& o) {
    CZqRegMailBoxes boxes;
    if (!boxes.Load())
        return NoVersionBlock("mailboxes list");
    const DWORD default_box = boxes.GetUserDefault();
    nlohmann::json out = nlohmann::json::array();
    for (int i = 0; i < boxes.GetSize(); ++i) {
        const tagREGMAILBOXSTRUCT* box = boxes.GetAt(i);
        if (o.json) {
            out.push_back({{"number", box->m_dwNumber},
                           {"name", Text(box->m_csName)},
                           {"default", box->m_dwNumber == default_box}});
        } else {
            std::printf("%c %08u  %s\n", box->m_dwNumber == default_box ? '*' : ' ',
                        box->m_dwNumber, Text(box->m_csName).c_str());
        }
    }
    if (o.json)
        PrintJson(out);
    return kExitOk;
}

int Add(const MailBoxOptions& o) {
    const std::string command = "mailboxes add";
    if (o.number > 99999999)
        return UsageError(command, "a mailbox number has up to 8 digits");
    if (o.name.empty())
        return UsageError(command, "a mailbox needs a name");
    CZqRegMailBoxes boxes;
    if (!boxes.Load())
        return NoVersionBlock(command);
    const bool first = boxes.GetSize() == 0;
    const DWORD default_box = boxes.GetUserDefault();
    if (boxes.DoesNumberExist(o.number)) {
        return Fail(command, std::to_string(o.number), "a mailbox has this number already");
    }
    const std::string name = ToAnsi(o.name);
    if (!boxes.IsNameUnique(name.c_str())) {
        return Fail(command, o.name, "a mailbox has this name already");
    }
    if (boxes.Add(o.number, name.c_str()) == nullptr) {
        return Fail(command, o.name, LibraryStatus(0x24004000));
    }
    return WriteKeepingDefault(command, boxes, first ? o.number : default_box);
}

int Remove(const MailBoxOptions& o) {
    const std::string command = "mailboxes remove";
    CZqRegMailBoxes boxes;
    if (!boxes.Load())
        return NoVersionBlock(command);
    const DWORD default_box = boxes.GetUserDefault();
    if (!boxes.Remove(o.number)) {
        return Fail(command, std::to_string(o.number), "no mailbox has this number");
    }
    return WriteKeepingDefault(command, boxes, default_box);
}

int Default(const MailBoxOptions& o) {
    const std::string command = "mailboxes default";
    CZqRegMailBoxes boxes;
    if (!boxes.Load())
        return NoVersionBlock(command);
    if (o.number_option->count() > 0) {
        if (boxes.GetByNumber(o.number) == nullptr) {
            return Fail(command, std::to_string(o.number), "no mailbox has this number");
        }
        boxes.SetUserDefault(o.number);
        return kExitOk;
    }
    if (boxes.GetSize() == 0)
        return Fail(command, "", "there are no mailboxes");
    const DWORD number = boxes.GetUserDefault();
    const tagREGMAILBOXSTRUCT* box = boxes.GetByNumber(number);
    const std::string name = box != nullptr ? Text(box->m_csName) : std::string();
    if (o.json) {
        PrintJson({{"number", number}, {"name", name}});
    } else {
        std::printf("%08u  %s\n", number, name.c_str());
    }
    return kExitOk;
}

int Path(const MailBoxOptions& o) {
    const std::string command = "mailboxes path";
    static constexpr struct {
        const char* name;
        MAILBOXFOLDER folder;
    } kFolders[] = {{"mailbox", MBF_MAILBOX}, {"inbox", MBF_INBOX},     {"outbox", MBF_OUTBOX},
                    {"setup", MBF_SETUP},     {"prompts", MBF_PROMPTS}, {"archive", MBF_ARCHIVE}};
    const MAILBOXFOLDER* folder = nullptr;
    for (const auto& f : kFolders) {
        if (o.folder == f.name)
            folder = &f.folder;
    }
    if (folder == nullptr) {
        return UsageError(command,
                          "the folder is mailbox, inbox, outbox, setup, prompts or archive");
    }
    CString path;
    if (!CZqRegMailBoxes::GetMailBoxPath(o.number, path, *folder)) {
        return Fail(command, std::to_string(o.number), "there are no mailboxes");
    }
    std::printf("%s\n", Text(path).c_str());
    return kExitOk;
}

void AddMailBoxesCommand(CLI::App& app, Runner& run) {
    auto o = std::make_shared<MailBoxOptions>();
    CLI::App* boxes = app.add_subcommand("mailboxes", "The suite's numbered mailboxes");
    boxes->require_subcommand(1);
    SetExamples(boxes, {"zq mailboxes add 42 \"Anna Huber\"", "zq mailboxes list"});

    CLI::App* list = boxes->add_subcommand("list", "List the mailboxes (* marks the default)");
    AddJsonFlag(list, o->json);
    SetExamples(list, {"zq mailboxes list --json"});
    list->callback([&run, o] { run = [o] { return List(*o); }; });

    CLI::App* add =
        boxes->add_subcommand("add", "Add a mailbox (the first one becomes the default)");
    add->add_option("number", o->number, "Mailbox number (up to 8 digits)")->required();
    add->add_option("name", o->name, "Its name")->required();
    SetExamples(add, {"zq mailboxes add 7 Sales"});
    add->callback([&run, o] { run = [o] { return Add(*o); }; });

    CLI::App* remove = boxes->add_subcommand("remove", "Remove a mailbox from the list");
    remove->add_option("number", o->number, "Mailbox number")->required();
    SetExamples(remove, {"zq mailboxes remove 7"});
    remove->callback([&run, o] { run = [o] { return Remove(*o); }; });

    CLI::App* def = boxes->add_subcommand("default", "Show the default mailbox, or choose it");
    o->number_option = def->add_option("number", o->number, "Mailbox to make the default");
    AddJsonFlag(def, o->json);
    SetExamples(def, {"zq mailboxes default", "zq mailboxes default 42"});
    def->callback([&run, o] { run = [o] { return Default(*o); }; });

    CLI::App* path = boxes->add_subcommand(
        "path", "Print the folder of a mailbox (made when its parent exists)");
    path->add_option("number", o->number, "Mailbox number")->required();
    path->add_option("--folder", o->folder,
                     "mailbox (default), inbox, outbox, setup, prompts or archive");
    SetExamples(path, {"zq mailboxes path 42 --folder inbox"});
    path->callback([&run, o] { run = [o] { return Path(*o); }; });
}

}  // namespace

ZQ_COMMAND(AddMailBoxesCommand, 80);

}  // namespace zq::app
