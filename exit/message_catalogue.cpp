// Look-ups in the alert message catalogue and the error-name table.
#include "exit/message_tables.h"

const char *SearchMessageTemplate(uint32_t number) {
  return SearchMessageTemplateConst(number);
}

const char *SearchErrorName(int32_t number) {
  const MessageTableEntry *row = MessageTable;
  while (row->Number != number && row->Number != MESSAGE_TABLE_END) {
    row++;
  }
  return row->Text;
}
