#pragma once
// A folder late in the order reaching down, which is allowed.
#include "corvane/low/low.hpp"
