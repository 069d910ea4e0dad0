#pragma once
#include "platform/gdi/Gdi.h"
