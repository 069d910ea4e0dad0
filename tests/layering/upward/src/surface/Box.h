#pragma once
#include "platform/core/Low.h"
#include "store/Store.h"
