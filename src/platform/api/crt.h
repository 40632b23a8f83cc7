/* C-runtime functions of Windows that are not part of the Win32 API proper
 * (on Windows they come from the C runtime's <direct.h>).
 *
 * Drives are numbered 1 = A: ... 26 = Z:. Of the emulated system's drives
 * only C: (the prefix's drive_c folder) and Z: (the Unix root) exist. */
#ifndef ZQ_PLATFORM_API_CRT_H
#define ZQ_PLATFORM_API_CRT_H

#include "platform/api/types.h"

/* Free and total space of a drive in clusters, as GetDiskFreeSpaceA reports
 * them (so a volume over 2 GB reads as 2 GB of 32 KB clusters). */
struct _diskfree_t {
    unsigned total_clusters;
    unsigned avail_clusters;
    unsigned sectors_per_cluster;
    unsigned bytes_per_sector;
};

ZQ_EXTERN_C_BEGIN

/* The drive of the process's current folder: 3 (C:) below the prefix's
 * drive_c folder, otherwise 26 (Z:). Never fails. */
ZQ_API int _getdrive(void);

/* Fills *diskfree for drive `drive` (0 = the current drive) and returns 0;
 * otherwise returns the Win32 error, sets errno and leaves *diskfree
 * untouched: ERROR_INVALID_PARAMETER (errno EINVAL) for a NULL pointer or a
 * drive above 26, ERROR_PATH_NOT_FOUND for a drive that does not exist.
 * The current drive is measured at the current folder rather than at the
 * drive's root: Z: spans every Unix file system, and the one holding the
 * current folder is the one a program writing there cares about. */
ZQ_API unsigned _getdiskfree(unsigned drive, struct _diskfree_t* diskfree);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_CRT_H */
