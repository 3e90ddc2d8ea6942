#pragma once

/// Marks what the support library exports to plug-ins and hosts.
#define IBIS_SUPPORT_API __attribute__((visibility("default")))
