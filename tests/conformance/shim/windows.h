/* <windows.h> for the conformance probes: our platform layer instead of
 * the system's, plus the C runtime dialect the probes were written in.
 *
 * The probes were written for the Windows C runtime, whose printf knows
 * %I64d and takes %S / %ls as 16-bit WCHAR strings. printf and sprintf are
 * therefore routed through a small translator that rewrites those
 * conversions for the C library here. The probes are built with
 * -fshort-wchar so that L"" literals are WCHAR strings. */
#ifndef ZQ_CONFORMANCE_SHIM_WINDOWS_H
#define ZQ_CONFORMANCE_SHIM_WINDOWS_H

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/win32.h"

/* Formats one conversion of a Windows-runtime format (conversion points at '%')
 * into out; returns the number of format characters used. */
static size_t zq_probe_convert(const char* conversion, va_list* args, char* out, size_t out_size) {
    char plain[64];
    size_t n = 1, p = 1;
    int wide = 0, narrow = 0, i64 = 0;
    plain[0] = '%';
    while (conversion[n] && strchr("-+ #0123456789.", conversion[n]) && p < sizeof plain - 8)
        plain[p++] = conversion[n++];
    for (;;) {
        if (conversion[n] == 'I' && conversion[n + 1] == '6' && conversion[n + 2] == '4') {
            i64 = 1;
            n += 3;
        } else if (conversion[n] == 'I' && conversion[n + 1] == '3' && conversion[n + 2] == '2') {
            n += 3;
        } else if (conversion[n] == 'l' && conversion[n + 1] == 'l') {
            i64 = 1;
            n += 2;
        } else if (conversion[n] == 'l') {
            wide = 1;
            n += 1;
        } else if (conversion[n] == 'w') {
            wide = 1;
            n += 1;
        } else if (conversion[n] == 'h') {
            narrow = 1;
            n += 1;
        } else
            break;
    }
    char type = conversion[n];
    if (!type) {
        out[0] = 0;
        return n;
    }
    n++;
    switch (type) {
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            if (i64) {
                plain[p++] = 'l';
                plain[p++] = 'l';
                plain[p++] = type;
                plain[p] = 0;
                snprintf(out, out_size, plain, va_arg(*args, long long));
            } else { /* 'l' is 32 bits in the Windows runtime, like int */
                plain[p++] = type;
                plain[p] = 0;
                snprintf(out, out_size, plain, va_arg(*args, int));
            }
            break;
        case 'c':
        case 'C':
            plain[p++] = 'c';
            plain[p] = 0;
            snprintf(out, out_size, plain, va_arg(*args, int));
            break;
        case 's':
        case 'S': {
            int is_wide = type == 'S' ? !narrow : wide;
            plain[p++] = 's';
            plain[p] = 0;
            if (is_wide) {
                const WCHAR* w = va_arg(*args, const WCHAR*);
                char buffer[1024];
                if (!w)
                    snprintf(out, out_size, plain, "(null)");
                else {
                    int r =
                        WideCharToMultiByte(CP_ACP, 0, w, -1, buffer, sizeof buffer, NULL, NULL);
                    if (r <= 0)
                        buffer[0] = 0;
                    snprintf(out, out_size, plain, buffer);
                }
            } else {
                const char* s = va_arg(*args, const char*);
                snprintf(out, out_size, plain, s ? s : "(null)");
            }
            break;
        }
        case 'p':
            snprintf(out, out_size, "%0*llX", (int)(2 * sizeof(void*)),
                     (unsigned long long)(size_t)va_arg(*args, void*));
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G':
            plain[p++] = type;
            plain[p] = 0;
            snprintf(out, out_size, plain, va_arg(*args, double));
            break;
        case '%':
            snprintf(out, out_size, "%%");
            break;
        default:
            snprintf(out, out_size, "%c", type);
            break;
    }
    return n;
}

/* vsprintf with the Windows runtime's conversions; the result is cut at
 * out_size - 1 characters. */
static int zq_probe_vformat(char* out, size_t out_size, const char* format, va_list args) {
    size_t used = 0;
    va_list copy;
    va_copy(copy, args);
    while (*format) {
        char piece[2048];
        size_t piece_length;
        if (*format != '%') {
            piece[0] = *format++;
            piece_length = 1;
        } else {
            format += zq_probe_convert(format, &copy, piece, sizeof piece);
            piece_length = strlen(piece);
        }
        if (used + piece_length >= out_size)
            piece_length = out_size - 1 - used;
        memcpy(out + used, piece, piece_length);
        used += piece_length;
    }
    va_end(copy);
    out[used] = 0;
    return (int)used;
}

static int zq_probe_printf(const char* format, ...) {
    char buffer[8192];
    va_list args;
    int n;
    va_start(args, format);
    n = zq_probe_vformat(buffer, sizeof buffer, format, args);
    va_end(args);
    fwrite(buffer, 1, (size_t)n, stdout);
    return n;
}

static int zq_probe_sprintf(char* out, const char* format, ...) {
    va_list args;
    int n;
    va_start(args, format);
    n = zq_probe_vformat(out, 2048, format, args);
    va_end(args);
    return n;
}

/* fopen of a DOS path, as the Windows runtime takes it: C: is the prefix's
 * drive_c folder and Z: the Unix root, '\\' separates; other names pass as
 * they are. Names are not matched without regard to case. */
static FILE* zq_probe_fopen(const char* path, const char* mode) {
    char unix_path[4096];
    const char* rest = path;
    int used = 0;
    if ((path[0] == 'C' || path[0] == 'c') && path[1] == ':') {
        const char* prefix = getenv("ZQ_PREFIX");
        used = snprintf(unix_path, sizeof unix_path, "%s/drive_c", prefix ? prefix : ".");
        rest = path + 2;
    } else if ((path[0] == 'Z' || path[0] == 'z') && path[1] == ':') {
        rest = path + 2;
    } else if (!strchr(path, '\\')) {
        return fopen(path, mode);
    }
    if (used < 0 || used >= (int)sizeof unix_path)
        return NULL;
    for (; *rest && used + 1 < (int)sizeof unix_path; ++rest)
        unix_path[used++] = *rest == '\\' ? '/' : *rest;
    unix_path[used] = 0;
    return fopen(unix_path, mode);
}

#define printf zq_probe_printf
#define sprintf zq_probe_sprintf
#define fopen zq_probe_fopen

#endif /* ZQ_CONFORMANCE_SHIM_WINDOWS_H */
