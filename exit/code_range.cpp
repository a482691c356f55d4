// The character-column map of the connection, from ShowHexCharCcsid.
#include "exit/control_block.h"

void SetValueForCodeRangeCheck(ExitControlBlock *cb) {
  FillCodeRangeMap(&cb->CodeRange, cb->Settings.ShowHexCharCcsid);
}
