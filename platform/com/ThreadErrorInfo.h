// What leaving COM does to a thread's error information.
#pragma once

/// Releases the calling thread's error information object, if it has one.
void DropThreadErrorInfo();
