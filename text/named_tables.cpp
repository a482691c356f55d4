// Tables of names that are not platform constants; see text/named_tables.h.
#include "text/named_tables.h"

extern const ConstantStringEntry Constant_Module_Name[] = {
    // Processes that the queue manager starts and watches.
    {"zkexctl", "Queue manager execution controller"},
    {"zkagent", "Queue manager agent (runs the ZKI calls of local applications)"},
    {"zklogger", "Recovery logger"},
    {"zkckpt", "Checkpoint processor"},
    {"zkutilm", "Critical utility manager"},
    {"zkrutil", "Restartable utility manager"},
    {"zksvcmgr", "Service manager (services and listeners)"},
    {"zkrepman", "Cluster repository manager"},
    {"zkdefmsg", "Deferred message processor"},
    {"zkpseng", "Publish/subscribe engine"},
    {"zkexpsc", "Expiry scanner"},
    {"zkauthsv", "Object authority service"},
    {"zkstatcl", "Statistics and accounting collector"},
    {"zkhamon", "Standby instance monitor"},
    {"zkcmdsvr", "Command server"},
    // Channels and the processes that start them.
    {"zkchinit", "Channel initiator"},
    {"zklsnr", "Listener"},
    {"zkchpool", "Channel process pool"},
    {"zkrespdr", "Responder channel started by the listener"},
    {"zkchl", "Channel started by command"},
    // Programs that serve queues.
    {"zktrgmon", "Trigger monitor"},
    {"zkdlqh", "Dead-letter queue handler"},
    // Control commands.
    {"crtzkm", "Create queue manager"},
    {"strzkm", "Start queue manager"},
    {"endzkm", "End queue manager"},
    {"dltzkm", "Delete queue manager"},
    {"dspzkm", "Display queue managers"},
    {"dspzkver", "Display version information"},
    {"runzksc", "ZKSC command processor"},
    {"setzkaut", "Set object authority"},
    {"dspzkaut", "Display object authority"},
    {"strzktrc", "Start trace"},
    {"endzktrc", "End trace"},
    {"dspzktrc", "Format trace"},
    {"dspzktrn", "Display in-doubt transactions"},
    {"rsvzktrn", "Resolve in-doubt transactions"},
    {"rcdzkimg", "Record media image"},
    {"rcrzkobj", "Re-create object from media image"},
    {"dmpzklog", "Dump recovery log"},
    {"", "(user application)"},
};

// A call's request segment is 0x80 plus a call number, its reply 0x90 plus
// the same number; the protocol's own segments lie below 0x80.
extern const ConstantByteEntry Constant_ApiCallType[] = {
    {0x81, "ZKCONN request"},
    {0x91, "ZKCONN reply"},
    {0x82, "ZKDISC request"},
    {0x92, "ZKDISC reply"},
    {0x83, "ZKOPEN request"},
    {0x93, "ZKOPEN reply"},
    {0x84, "ZKCLOSE request"},
    {0x94, "ZKCLOSE reply"},
    {0x85, "ZKGET request"},
    {0x95, "ZKGET reply"},
    {0x86, "ZKPUT request"},
    {0x96, "ZKPUT reply"},
    {0x87, "ZKPUT1 request"},
    {0x97, "ZKPUT1 reply"},
    {0x88, "ZKSET request"},
    {0x98, "ZKSET reply"},
    {0x89, "ZKINQ request"},
    {0x99, "ZKINQ reply"},
    {0x8A, "ZKCMIT request"},
    {0x9A, "ZKCMIT reply"},
    {0x8B, "ZKBACK request"},
    {0x9B, "ZKBACK reply"},
    {0x8C, "SPI request"},
    {0x9C, "SPI reply"},
    {0x8D, "ZKSTAT request"},
    {0x9D, "ZKSTAT reply"},
    {0x8E, "ZKSUB request"},
    {0x9E, "ZKSUB reply"},
    {0x8F, "ZKSUBRQ request"},
    {0x9F, "ZKSUBRQ reply"},
    // Every xa_* call of a client flows in one request and one reply; the
    // call itself is named inside the segment.
    {0xA1, "XA request"},
    {0xB1, "XA reply"},
    {0x01, "initial data"},
    {0x02, "resync data"},
    {0x03, "reset data"},
    {0x04, "message data"},
    {0x05, "status data"},
    {0x06, "security data"},
    {0x07, "ping data"},
    {0x08, "user id data"},
    {0x09, "heartbeat"},
    {0x0A, "connection authentication"},
    {0x0B, "renegotiate data"},
    {0x0C, "socket action"},
    {0x0D, "async message"},
    {0x0E, "request messages"},
    {0x0F, "notification"},
    {0x10, "conversation close"},
    {CONSTANT_BYTE_TABLE_END, "(N/A)"},
};

// The segment bits of a channel buffer: first (0x10), last (0x20), both set
// for a buffer that is not segmented, neither for one in the middle.
extern const ConstantByteEntry Constant_SendReceiveSegmentStatus[] = {
    {0x10, "first"},
    {0x00, "middle"},
    {0x20, "last"},
    {0x30, "none"},
    {CONSTANT_BYTE_TABLE_END, "(others)"},
};

// The segment status of a ZKI call that its data carries in pieces.
extern const ConstantByteEntry Constant_ZkiSegmentStatus[] = {
    {1, "first"}, {2, "middle"}, {3, "last"}, {0, "none"}, {CONSTANT_BYTE_TABLE_END, "(others)"},
};

// Header and message compression lists: the techniques in order of the
// channel's preference.
extern const ConstantIntEntry Constant_ZkIntListCompression[] = {
    {0, "1st choice"},        {1, "2nd choice"},   {2, "3rd choice"},   {3, "4th choice"},
    {4, "5th choice"},        {5, "6th choice"},   {6, "7th choice"},   {7, "8th choice"},
    {8, "9th choice"},        {9, "10th choice"},  {10, "11th choice"}, {11, "12th choice"},
    {12, "13th choice"},      {13, "14th choice"}, {14, "15th choice"}, {15, "16th choice"},
    {CONSTANT_TABLE_END, ""},
};

// Channel and queue monitoring indicators: a short-term and a long-term
// average.
extern const ConstantIntEntry Constant_ZkIntListPeriod[] = {
    {0, "short-term average"},
    {1, "long-term average"},
    {CONSTANT_TABLE_END, ""},
};

// Statistics counted apart for nonpersistent and persistent messages.
extern const ConstantIntEntry Constant_ZkIntListPersistence[] = {
    {0, "for nonpersistent messages"},
    {1, "for persistent messages"},
    {CONSTANT_TABLE_END, ""},
};

// Statistics counted by object type: position n counts objects of type n + 1
// (the queue is object type 1).
extern const ConstantIntEntry Constant_ZkIntListZkot[] = {
    {0, "Object type - queue"},
    {1, "Object type - name list"},
    {2, "Object type - process"},
    {3, "Object type - storage class"},
    {4, "Object type - queue manager"},
    {5, "Object type - channel"},
    {6, "Object type - authentication information"},
    {7, "Object type - topic"},
    {8, "Object type - communication information"},
    {9, "Object type - CF structure"},
    {10, "Object type - listener"},
    {11, "Object type - service"},
    {CONSTANT_TABLE_END, ""},
};

// Disconnections counted by how the connection ended.
extern const ConstantIntEntry Constant_ZkIntListZkdiscType[] = {
    {0, "Disconnect type - normal"},
    {1, "Disconnect type - implicit"},
    {2, "Disconnect type - queue manager"},
    {CONSTANT_TABLE_END, ""},
};
