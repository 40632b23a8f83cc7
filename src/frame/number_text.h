// Numbers as text and back: StringToDWord, DWordToString,
// DWordToBaseString.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

// The decimal number at the start of lpszText, as the C library's strtoul
// with base 10 reads it in a 32-bit program: leading blanks and a sign are
// accepted, a leading '-' negates modulo 2^32, reading stops at the first
// non-digit, a value beyond 32 bits gives 0xFFFFFFFF, and text without
// digits (or NULL) gives 0.
DWORD StringToDWord(LPCTSTR lpszText);

// The value in decimal.
CString DWordToString(DWORD dwValue);

// The value in base nBase (2 to 36, digits beyond 9 as lower-case letters,
// as _ultoa writes them); an empty string for another base.
CString DWordToBaseString(DWORD dwValue, int nBase);
