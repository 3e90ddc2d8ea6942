#pragma once

#include "simulator/test_bench.h"

namespace ibis {

/// A bench for a driver and what receives it: the load that the driver needs, the levels that the
/// far end settles at, the span and the step.
TestBench setUpBench(const DeviceNetlist& driver, const IBISModel& model, int corner,
                     BenchEnd driverEnd, BenchEnd receiverEnd);

}  // namespace ibis
