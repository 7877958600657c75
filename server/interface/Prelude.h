// The C++ side of Prelude.idl: what the generated interface header builds on.
#pragma once

#include "platform/com/Com.h"
