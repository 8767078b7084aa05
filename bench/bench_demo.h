#pragma once
// The demo database the benchmarks start from: employees and the rest, but no time,
// inventory or GPS records (each benchmark adds the records it measures).
#include "demo_generator.h"

inline tp::DemoOptions recordFreeDemo(int employees = tp::DemoOptions{}.employees)
{
    tp::DemoOptions options;
    options.employees = employees;
    options.timeRecords = 0;
    options.inventoryRecords = 0;
    options.tracks = 0;
    options.gpsPoints = 0;
    options.replaceExisting = true;
    return options;
}
