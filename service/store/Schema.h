#pragma once

class Transaction;

// Makes the tables of a new database, or refuses one that a newer version wrote.
void bringUpToDate(Transaction& transaction);
