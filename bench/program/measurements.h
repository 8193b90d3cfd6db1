// The rows of the table. Each function measures and prints its own.
#pragma once

#include "bench/program/client.h"
#include "sim/bus/usb_device.h"

namespace bench {

void measureStartAndMemory(sim::UsbBus& bus);
void measureIdle(sim::UsbBus& bus);
void measurePress(sim::UsbBus& bus);
void measureClick(sim::UsbBus& bus);
void measureLogList(sim::UsbBus& bus);
void measureDescriptors(sim::UsbBus& bus);
void measureCommands(sim::UsbBus& bus);
void measureTrace(sim::UsbBus& bus);
void measureMonitor(sim::UsbBus& bus);

} // namespace bench
