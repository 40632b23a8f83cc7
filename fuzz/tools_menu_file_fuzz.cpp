// Tools-menu files of any content: the validity check and the loads agree,
// every record is taken byte for byte, the text getters stay inside their
// fields, the filter numbers the shown items, and a loaded file saves back
// byte for byte (header fields and record sizes normalised).
#include <cstring>

#include "fuzz_support.h"
#include "toolsmenu/tlm_file.h"
#include "toolsmenu/tlm_menu.h"

namespace {

std::filesystem::path g_folder;

void FreeItems(CObArray& items) {
    for (int i = 0; i < items.GetSize(); ++i) {
        delete items.GetAt(i);
    }
    items.RemoveAll();
}

DWORD Dword(const uint8_t* p) {
    return static_cast<DWORD>(p[0]) | static_cast<DWORD>(p[1]) << 8 |
           static_cast<DWORD>(p[2]) << 16 | static_cast<DWORD>(p[3]) << 24;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    g_folder = zq::fuzz::MakeFuzzFolder("toolsmenu");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using zq::fuzz::Require;
    const std::string input = (g_folder / "input.tlm").string();
    const std::string output = (g_folder / "output.tlm").string();
    zq::fuzz::WriteBytes(input, data, size);

    DWORD valid = CTlmFile::IsValidFile(input.c_str());
    CTlmFile file;
    CObArray items;
    DWORD loaded = file.LoadFileData(input.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0);
    if (valid != 0) {
        Require(valid == (size < TLMFILE_HEADER_SIZE ? TLM_ERROR_FILE_SHORT : valid));
        Require(loaded == TLM_ERROR_VERSION && items.GetSize() == 0);
        return 0;
    }
    Require(loaded == 0);
    const size_t count = (size - TLMFILE_HEADER_SIZE) / TLMITEM_RECORD_SIZE;
    Require(static_cast<size_t>(items.GetSize()) == count);
    size_t shown = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* record = data + TLMFILE_HEADER_SIZE + i * TLMITEM_RECORD_SIZE;
        auto* item = static_cast<CTlmItem*>(items.GetAt(static_cast<int>(i)));
        Require(std::memcmp(&item->GetItemData(), record, TLMITEM_RECORD_SIZE) == 0);
        Require(item->GetDataMenuText().GetLength() <= 32);
        Require(item->GetDataDescription().GetLength() <= 128);
        Require(item->GetDataProgramPath().GetLength() <= 264);
        Require(item->GetDataWorkingDirectory().GetLength() <= 264);
        Require(item->GetDataArguments().GetLength() <= 264);
        shown += (Dword(record + 4) & TLMITEM_FLAG_SHOWN) != 0;
    }
    Require(file.GetDescription().GetLength() <= 128);

    // Saved back: the header's fixed fields and the record sizes normalised,
    // everything else as read.
    Require(file.SaveFileData(output.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items) == 0);
    std::string saved = zq::fuzz::ReadBytes(output);
    Require(saved.size() == TLMFILE_HEADER_SIZE + count * TLMITEM_RECORD_SIZE);
    const auto* out = reinterpret_cast<const uint8_t*>(saved.data());
    Require(Dword(out) == TLMFILE_HEADER_SIZE && Dword(out + 4) == TLMFILE_MAGIC &&
            Dword(out + 8) == TLMFILE_VERSION && Dword(out + 12) == 0);
    Require(std::memcmp(out + 16, data + 16, TLMFILE_HEADER_SIZE - 16) == 0);
    for (size_t i = 0; i < count; ++i) {
        size_t at = TLMFILE_HEADER_SIZE + i * TLMITEM_RECORD_SIZE;
        Require(Dword(out + at) == TLMITEM_RECORD_SIZE);
        Require(std::memcmp(out + at + 4, data + at + 4, TLMITEM_RECORD_SIZE - 4) == 0);
    }
    FreeItems(items);

    // Filtered, through the menu: only the shown items, numbered downward.
    CTlmMenu menu;
    Require(menu.LoadFile(input.c_str()) == 0);
    Require(static_cast<size_t>(menu.GetItems().GetSize()) == shown);
    for (int i = 0; i < menu.GetItems().GetSize(); ++i) {
        auto* item = static_cast<CTlmItem*>(menu.GetItems().GetAt(i));
        Require(item->GetCommand() == TLMFILE_FIRST_COMMAND - static_cast<UINT>(i));
        CString text;
        Require(menu.GetMessageString(item->GetCommand(), text));
    }
    CString none;
    Require(!menu.GetMessageString(TLMFILE_FIRST_COMMAND - static_cast<UINT>(shown), none));
    return 0;
}
