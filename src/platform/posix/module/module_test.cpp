// Loading modules by their Windows names, and the language modules built
// with the library.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

// Loads a module for one test and frees it afterwards.
class ScopedModule {
public:
    explicit ScopedModule(const char* name) : module_(LoadLibraryA(name)) {}
    ~ScopedModule() {
        if (module_)
            FreeLibrary(module_);
    }
    HMODULE get() const { return module_; }

private:
    HMODULE module_;
};

TEST(LoadLibrary, WindowsNameFindsTheModuleBesideTheProgram) {
    ScopedModule module("ZQTSTOK.DLL");
    ASSERT_NE(module.get(), nullptr) << GetLastError();
    EXPECT_EQ(GetModuleHandleA("zqtstok.dll"), module.get());
    EXPECT_EQ(GetModuleHandleA("ZQTSTOK"), module.get());  // ".dll" is implied
    char text[64];
    EXPECT_EQ(LoadStringA(module.get(), 7, text, sizeof text), 20);
    EXPECT_STREQ(text, "from the test module");
    auto attaches = reinterpret_cast<int (*)()>(
        reinterpret_cast<void*>(GetProcAddress(module.get(), "ZqTestModuleAttaches")));
    ASSERT_NE(attaches, nullptr);
    EXPECT_EQ(attaches(), 1);
}

TEST(LoadLibrary, CountsReferences) {
    HMODULE first = LoadLibraryA("zqtstok.dll");
    ASSERT_NE(first, nullptr);
    HMODULE second = LoadLibraryA("ZqTstOk.Dll");
    EXPECT_EQ(first, second);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(GetModuleHandleA("ZQTSTOK.DLL"), first);  // still loaded
    EXPECT_TRUE(FreeLibrary(second));
    EXPECT_EQ(GetModuleHandleA("ZQTSTOK.DLL"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(LoadLibrary, RefusesAModuleWhoseDllMainFails) {
    SetLastError(0);
    EXPECT_EQ(LoadLibraryA("ZQTSTBAD.DLL"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    EXPECT_EQ(GetModuleHandleA("ZQTSTBAD.DLL"), nullptr);  // unloaded again
}

TEST(LoadLibrary, MissingAndUnloadable) {
    SetLastError(0);
    EXPECT_EQ(LoadLibraryA("ZQNOSUCH.DLL"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(LoadLibraryA(""), nullptr);
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);

    std::string folder = zq::test::MakeScratchFolder("modules");
    zq::test::WriteFileBytes(folder + "/zqjunk.dll.so", "not a module");
    EXPECT_EQ(LoadLibraryA((folder + "/ZQJUNK.DLL").c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
    EXPECT_FALSE(FreeLibrary(reinterpret_cast<HMODULE>(&folder)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(LoadLibrary, ExactPathAndModulePath) {
    const std::string bin = zq::test::ExecutableFolder();
    {
        ScopedModule by_path((bin + "/zqtstok.dll.so").c_str());
        EXPECT_NE(by_path.get(), nullptr);
        // A DOS path to the same file, through drive Z:.
        std::string dos = "Z:" + bin + "/ZQTSTOK.DLL";
        for (char& c : dos)
            c = c == '/' ? '\\' : c;
        ScopedModule by_dos_path(dos.c_str());
        EXPECT_EQ(by_dos_path.get(), by_path.get());
    }
    std::string folder = zq::test::MakeScratchFolder("modpath");
    std::string module_bytes = zq::test::ReadFileBytes(bin + "/zqtstok.dll.so");
    ASSERT_FALSE(module_bytes.empty());
    zq::test::WriteFileBytes(folder + "/zqtstcp.dll.so", module_bytes);
    // The copy finds the platform library beside itself, as the original does.
    ASSERT_EQ(
        symlink((bin + "/libzqplatform.so.1").c_str(), (folder + "/libzqplatform.so.1").c_str()),
        0);
    EXPECT_EQ(LoadLibraryA("ZQTSTCP.DLL"), nullptr);
    setenv("ZQ_MODULE_PATH", ("/nonexistent:" + folder).c_str(), 1);
    ScopedModule found("ZQTSTCP.DLL");
    unsetenv("ZQ_MODULE_PATH");
    EXPECT_NE(found.get(), nullptr) << GetLastError();
}

TEST(GetProcAddress, OnlyNamesOfTheModuleItself) {
    ScopedModule module("ZQTSTOK.DLL");
    ASSERT_NE(module.get(), nullptr);
    SetLastError(0);
    EXPECT_EQ(GetProcAddress(module.get(), MAKEINTRESOURCEA(1)), nullptr);  // ordinals
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetProcAddress(module.get(), "NoSuchFunction"), nullptr);
    EXPECT_EQ(GetProcAddress(module.get(), "GetLastError"),
              nullptr);  // lives in the platform library
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
}

TEST(GetModuleFileName, DosPathOfTheProgram) {
    char path[MAX_PATH];
    DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(std::strlen(path), length);
    EXPECT_EQ(std::string(path, 3), "Z:\\");
    EXPECT_EQ(std::string(path).substr(length - 18), "\\zq_platform_tests");
    EXPECT_EQ(GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path), length);
}

TEST(GetModuleFileName, TruncatesAsWindows) {
    char full[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, full, sizeof full);
    std::vector<char> buffer(length + 8, '~');
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameA(nullptr, buffer.data(), length + 1), length);  // just fits
    EXPECT_EQ(GetLastError(), 0u);
    std::fill(buffer.begin(), buffer.end(), '~');
    EXPECT_EQ(GetModuleFileNameA(nullptr, buffer.data(), length), length);  // one short
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::string(buffer.data()), std::string(full, length - 1));
    EXPECT_EQ(buffer[length], '~');
    EXPECT_EQ(GetModuleFileNameA(nullptr, buffer.data(), 0), 0u);
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameA(reinterpret_cast<HMODULE>(&buffer), full, sizeof full), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

// ---- the language modules ----

struct CountryRecord {
    DWORD name_and_flag, prefix_and_code, id;
};

std::vector<CountryRecord> CountryTable(HMODULE module) {
    std::vector<CountryRecord> records;
    HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(25599), RT_RCDATA);
    if (!found)
        return records;
    auto* words = static_cast<const DWORD*>(LockResource(LoadResource(module, found)));
    DWORD count = SizeofResource(module, found) / 12;
    for (DWORD i = 0; i < count && words[i * 3] != 0; ++i) {
        records.push_back({words[i * 3], words[i * 3 + 1], words[i * 3 + 2]});
    }
    return records;
}

TEST(LanguageModule, EnglishCountryTableAndNames) {
    ScopedModule module("ZQGBLENU.DLL");
    ASSERT_NE(module.get(), nullptr);
    std::vector<CountryRecord> table = CountryTable(module.get());
    ASSERT_EQ(table.size(), 240u);
    char name[64];
    for (size_t i = 0; i < table.size(); ++i) {
        const CountryRecord& r = table[i];
        EXPECT_EQ(LOWORD(r.name_and_flag), 16045 + i);
        EXPECT_LT(HIWORD(r.name_and_flag), 212);
        EXPECT_GT(LoadStringA(module.get(), LOWORD(r.name_and_flag), name, sizeof name), 0);
    }
    LoadStringA(module.get(), LOWORD(table[0].name_and_flag), name, sizeof name);
    EXPECT_STREQ(name, "Afghanistan");
    // Germany: id 49, phone code 49, no prefix; Anguilla: NANP code 264 with prefix 1.
    bool germany = false, anguilla = false;
    for (const CountryRecord& r : table) {
        LoadStringA(module.get(), LOWORD(r.name_and_flag), name, sizeof name);
        if (std::strcmp(name, "Germany") == 0) {
            germany = r.id == 49 && r.prefix_and_code == (49u << 16);
        }
        if (std::strcmp(name, "Anguilla") == 0)
            anguilla = r.id == 101 && r.prefix_and_code == ((264u << 16) | 1);
    }
    EXPECT_TRUE(germany);
    EXPECT_TRUE(anguilla);
    EXPECT_GT(LoadStringA(module.get(), 16027, name, sizeof name), 0);
    EXPECT_STREQ(name, "International call");
    EXPECT_GT(LoadStringA(module.get(), 20552, name, sizeof name), 0);
}

TEST(LanguageModule, GermanModuleSameIdsGermanNames) {
    ScopedModule english("ZQGBLENU.DLL");
    ScopedModule german("ZQGBLDEU.DLL");
    ASSERT_NE(german.get(), nullptr);
    ASSERT_NE(german.get(), english.get());
    std::vector<CountryRecord> en = CountryTable(english.get()), de = CountryTable(german.get());
    ASSERT_EQ(en.size(), de.size());
    for (size_t i = 0; i < en.size(); ++i) {
        EXPECT_EQ(en[i].name_and_flag, de[i].name_and_flag);
        EXPECT_EQ(en[i].id, de[i].id);
    }
    char name[64];
    bool egypt = false;
    for (const CountryRecord& r : de) {
        LoadStringA(german.get(), LOWORD(r.name_and_flag), name, sizeof name);
        egypt = egypt || (r.id == 20 && std::strcmp(name, "\xC4gypten") == 0);
    }
    EXPECT_TRUE(egypt);
    EXPECT_GT(LoadStringA(german.get(), 16030, name, sizeof name), 0);
    EXPECT_STREQ(name,
                 "Ortsgespr\xE4"
                 "ch");
}

}  // namespace
