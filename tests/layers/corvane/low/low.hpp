#pragma once
// A folder early in the order reaching up: the layering check must name this line.
#include "corvane/high/high.hpp"
