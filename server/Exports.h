// How an entry point leaves the module.
#pragma once

// On Windows the module's definition file lists the entry points.
#ifdef _WIN32
#define ZK_EXPORT
#else
#define ZK_EXPORT __attribute__((visibility("default")))
#endif
