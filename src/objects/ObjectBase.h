// The face that a drawing object shows to the draw box: the object base class itself.
#pragma once

#include "objects/TvlObject.h"
