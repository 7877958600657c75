// Counts what the program holds of its heap.
#pragma once

/// How many objects that were made with `new` have not been deleted.
long LiveAllocations();
