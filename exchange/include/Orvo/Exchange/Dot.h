#pragma once

#include <Orvo/Exchange/Export.h>
#include <Orvo/Kin/Machine.h>

#include <iosfwd>

namespace Orvo::Exchange {

/// Writes the tree of a machine for Graphviz.
///
/// Each element is a box with its id, name, kind and register; heads and tables have shapes of
/// their own; each program system points at its head and its table and names its main axes. The
/// machine need be neither finished nor valid: parents are taken by their ids, so that a cycle or a
/// missing parent is there to be seen.
///
/// @throws ExchangeError where the stream fails
/// @par Cost
/// Linear in the machine.
ORVO_EXCHANGE_API void WriteDot(const Kin::Machine& machine, std::ostream& out);

}  // namespace Orvo::Exchange
