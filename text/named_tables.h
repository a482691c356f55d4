// Tables of names that are not platform constants: the queue manager's own
// process names, the segment types and statuses of the client protocol, and
// the names of the positions of command-format integer lists.
#pragma once

#include "text/constant_table.h"

// Process (module) names of the queue manager's own programs and commands,
// with a description of each; the end row's text answers for any other name.
extern const ConstantStringEntry Constant_Module_Name[];

// Segment types of the client protocol: a request and a reply for each call
// that flows, and the protocol's own control segments.
extern const ConstantByteEntry Constant_ApiCallType[];

// Segment status of a send or receive buffer of a channel, and of a ZKI call
// carried in segments.
extern const ConstantByteEntry Constant_SendReceiveSegmentStatus[];
extern const ConstantByteEntry Constant_ZkiSegmentStatus[];

// Names of the positions of command-format integer lists, by position.
extern const ConstantIntEntry Constant_ZkIntListCompression[];
extern const ConstantIntEntry Constant_ZkIntListPeriod[];
extern const ConstantIntEntry Constant_ZkIntListPersistence[];
extern const ConstantIntEntry Constant_ZkIntListZkot[];
extern const ConstantIntEntry Constant_ZkIntListZkdiscType[];
