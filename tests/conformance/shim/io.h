/* <io.h> for the conformance probes: stdout needs no binary mode here. */
#ifndef ZQ_CONFORMANCE_SHIM_IO_H
#define ZQ_CONFORMANCE_SHIM_IO_H

#include <stdio.h>

#define _O_BINARY 0x8000
#define _fileno(stream) fileno(stream)
#define _setmode(fd, mode) ((void)(fd), (void)(mode), 0)

#endif /* ZQ_CONFORMANCE_SHIM_IO_H */
