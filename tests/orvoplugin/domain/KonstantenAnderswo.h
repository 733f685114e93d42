#pragma once

#include <orvoplugin/domain/Unterfallart.h>

/// The constant UFA_LSTB as another unit of this program has it.
const Unterfallart& lstbAnderswo();
