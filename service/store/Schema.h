#pragma once

class Transaction;

// Creates the tables, or upgrades those of an older version. Throws DatabaseError for a file that a
// newer version wrote.
void bringUpToDate(Transaction& transaction);
