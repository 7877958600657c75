// All of COM and Automation, named as in the Windows header of the same name.
#pragma once

#include "platform/com/linux/objbase.h"
#include "platform/com/linux/ocidl.h"
#include "platform/com/linux/oleauto.h"
