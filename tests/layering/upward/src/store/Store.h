#pragma once
#include "surface/Box.h"
