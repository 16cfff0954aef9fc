#pragma once

// Tells whether one particular heap block has been freed, by replacing the global operator
// delete in the test program. Lets tests check that a node deleted its previous module.

namespace gentest {

/// Starts watching `block` (forgetting any earlier one).
void WatchDeletion(const void* block);
/// True once the watched block went through operator delete.
bool WatchedBlockDeleted();

}  // namespace gentest
