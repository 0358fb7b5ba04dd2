#ifndef ORVO_CORE_EXPORT_H
#define ORVO_CORE_EXPORT_H

// The library is built with hidden visibility; only what carries ORVO_API is
// part of its binary interface. Plug-ins use the same marker for their
// factories so that the Architect's dlsym finds them by their plain names.
#define ORVO_API __attribute__((visibility("default")))

#endif
