// What every subcommand of zq shares: text between the terminal and the
// library, JSON output, and the wording of failures.
//
// The terminal speaks UTF-8; the library keeps single-byte text in the
// system's ANSI code page (Windows-1252 for English and German). Names and
// values typed on the command line are converted on the way in and
// everything shown on the way out, so "München" stays "München". Files the
// tool reads or writes as a whole (REGEDIT4, translation input) pass
// through as bytes.
//
// A failure is one line on standard error:
//
//     zq reg query: HKCU\Software\Nope: the key or value does not exist (error 2,
//     ERROR_FILE_NOT_FOUND)
//
// naming the command, what it worked on, what went wrong and the status
// code the library or the platform gave, so a script can grep for it.
#pragma once

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string>
#include <string_view>

#include "command.h"
#include "platform/win32.h"

namespace zq::app {

// ANSI code page text as UTF-8, and back. Text that is not valid UTF-8 is
// passed on as it is; characters the code page lacks become their closest
// letter or '?'.
std::string ToUtf8(std::string_view ansi);
std::string ToAnsi(std::string_view utf8);

// UTF-8 text padded with blanks to `width` characters (not bytes), for
// columns; longer text is returned unchanged.
std::string Pad(std::string_view utf8, size_t width);

// Pretty-printed JSON and a line end on standard output. Strings in `value`
// must already be UTF-8 (see ToUtf8).
void PrintJson(const nlohmann::json& value);

// "zq <command>: <subject>: <message>" on standard error; returns
// kExitFailed. An empty subject is left out.
int Fail(std::string_view command, std::string_view subject, std::string_view message);
// The same for a command line the command cannot use; returns kExitUsage.
int UsageError(std::string_view command, std::string_view message);

// "<meaning> (error <n>, <ERROR_NAME>)" for a platform error code.
std::string Win32Status(DWORD code);
// "<meaning> (status 0x24xxxxxx)" for the library's own codes of the form
// 0x24xxxxxx; any other value is taken as a platform error code.
std::string LibraryStatus(DWORD code);
// "<meaning> (<owner> status <n>)" for the small status numbers a class
// keeps for itself (profile files, translation tables, tools-menu files).
std::string LocalStatus(std::string_view owner, DWORD code, std::string_view meaning);

// Sets the text below a command's help: its example lines, each shown
// indented under "Example:" / "Examples:".
void SetExamples(CLI::App* command, std::initializer_list<std::string_view> lines);

// Adds the --json flag of a listing command.
void AddJsonFlag(CLI::App* command, bool& json);

// A number typed on the command line: decimal, or hexadecimal after 0x.
// False (value untouched) for anything else or a value beyond 32 bits.
bool ParseNumber(std::string_view text, DWORD& value);
// The same for a signed 32-bit number (decimal, optional sign).
bool ParseInteger(std::string_view text, int& value);

}  // namespace zq::app
