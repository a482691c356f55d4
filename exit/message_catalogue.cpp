// The alert messages the exit raises. Placeholders: [$t] time stamp,
// [$0s]/[$0d] the operating system error's name and number, [$ns], [$nd],
// [$nu], [$nx] the n-th argument as text, signed, unsigned or hexadecimal.
#include "exit/message_tables.h"

const MessageCatalogueEntry MessageTableMonitorTool[] = {
    {1, "IN", "[$1s]"},
    {2, "EN", "[$1s][$2s]"},
    {1001, "EY",
     "File I/O error. \n  File      : [$1s]\n  Operation : [$2s]\n  Result    : [$0s] ([$0d])."},
    {1002, "EY", "System call error.  Function : [$1s]   Result : [$0s] ([$0d])."},
    {1006, "EY", "File rename error. \n  From : [$1s]\n  To   : [$2s]  [$0s] ([$0d])"},
    {1010, "EY", "No more memory is available.  [$0s] ([$0d])"},
    {1021, "EY",
     "ZK API error. Function:[$1s] CompCode:[$2d] Reason:[$3d] ([$4s])  Parms: [$5s] [$6s] [$7s]"},
    {2008, "WY",
     "Invalid parameter was found in [$1s] file.  (This message might be put to a message file "
     "in another directory.)"},
    {2009, "WY", "  Line : [$1d]   Parameter : [$2s]"},
    {2010, "WY", "Too many [$1s] parameters.  Maximum count allowed is [$2d]"},
    {2101, "EY",
     "Path name must be specified as Data attribute of ApiExitLocal stanza in qm.ini file."},
    {3100, "WY", "Unknown API structure : [$1s] version [$2u]"},
    {3101, "WY", "Unknown API attribute : [$1s] value [$2x]"},
    {MESSAGE_TABLE_END, "", ""},
};

const char *SearchMessageTemplate(uint32_t number) {
  for (const MessageCatalogueEntry *row = MessageTableMonitorTool; row->Template[0] != '\0';
       row++) {
    if (row->Number == number) {
      return row->Template;
    }
  }
  return nullptr;
}

const char *SearchErrorName(int32_t number) {
  const MessageTableEntry *row = MessageTable;
  while (row->Number != number && row->Number != MESSAGE_TABLE_END) {
    row++;
  }
  return row->Text;
}
