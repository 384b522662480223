// Numbers of the management protocol: the message header, classes, operations and item types. An item type means
// something only together with the class and operation of its message, so there are several groups of them.
#ifndef CHANNEL_PROTOCOL_H
#define CHANNEL_PROTOCOL_H

#include <cstdint>

namespace rsvp_mor {

// The 8 bytes in front of every request and reply.
enum HeaderOffset : uint32_t {
    HEADER_CLASS = 0,
    HEADER_OP = 1,
    HEADER_BODY_LENGTH = 2, // 16 bits, network order; the header itself is not counted
    HEADER_STATUS = 4,      // 32 bits, network order; 0 in a request
    HEADER_SIZE = 8,
};

// The bytes that an item takes beside its value. What they hold is the platform's matter.
constexpr uint16_t ITEM_OVERHEAD = 4;

enum MsgClass : uint8_t {
    CLASS_GLOBAL = 0,
    CLASS_INTERFACE = 1, // first item: COMMAND_IF_INDEX
    CLASS_PEER = 2,      // first item: COMMAND_PEER
    CLASS_SHOW = 3,
    CLASS_RESET = 5,
};

enum MsgOp : uint8_t {
    OP_SET = 0,
    OP_UNDO = 1,
    OP_GET = 3,
    OP_GET_FIRST = 4,
    OP_GET_NEXT = 5,
    OP_GET_FIRST_INGRESS = 6,
    OP_GET_NEXT_INGRESS = 7,
    OP_HELLO_TIMER = 8, // the two hello timers and nothing else
};

// Items of a command's request: classes global, interface and peer.
enum CommandItem : uint16_t {
    COMMAND_PEER = 0,
    COMMAND_IF_INDEX = 1,
    COMMAND_AUTH_CHALLENGE = 2,
    COMMAND_AUTH_KEY = 3,
    COMMAND_AUTH_LIFE_TIME = 4,
    COMMAND_AUTH_WINDOW_SIZE = 5,
    COMMAND_BFD = 6,
    COMMAND_DEBUG = 7,
    COMMAND_GR = 8,
    COMMAND_HELLO_ENABLE = 9,
    COMMAND_HELLO_INTERVAL = 10,
    COMMAND_HELLO_LOST = 11,
    COMMAND_KEEP_MULTIPLIER = 12,
    COMMAND_PEER_ENABLE = 13,
    COMMAND_REDUCTION = 14,
    COMMAND_REFRESH_INTERVAL = 15,
    COMMAND_RETRANS_INTERVAL = 16,
    COMMAND_RETRANS_INCREMENT = 17,
    COMMAND_IF_ENABLE = 18,
    COMMAND_DSCP = 19,
    COMMAND_GLOBAL_DISABLE = 20,
};

// Items of a reset's request.
enum ResetItem : uint16_t {
    RESET_AUTH = 0,
    RESET_STATISTICS = 1,
};

// Items of a read's request: class show.
enum ReadItem : uint16_t {
    READ_AUTH = 0,
    READ_CRLSP = 1,
    READ_DEBUG = 2,
    READ_NBR = 3,
    READ_PHSB = 4,
    READ_RSB = 5,
    READ_GLOBAL_INFO = 6,
    READ_IF_INFO = 7,
    READ_PSB = 8,
    READ_P2MP_CRLSP = 9,
    READ_P2MP_RSB = 10,
    READ_UP_LSP_COUNT = 100,
    READ_TUNNEL = 101,
    READ_RESOURCE = 103,
    READ_AR_HOP = 104,
    READ_C_HOP = 105,
    READ_FRR_GENERAL = 106,
    READ_EXT_AR_HOP = 107,
    READ_FRR_FACILITY = 108,
    READ_FRR_IF_COUNT = 109,
    READ_FRR_ACTIVE_IF_COUNT = 110,
    READ_ACTIVE_BYPASS_COUNT = 111,
    READ_IF_CONFIG = 112,
};

// Items of a reply that a decoder tells apart. The item of a one-item reply is not listed: its type is never checked.
enum ReplyItem : uint16_t {
    REPLY_CRLSP = 1,
    REPLY_ROUTE_LIST_3 = 3,
    REPLY_ROUTE_LIST_4 = 4,
    REPLY_ROUTE_LIST_5 = 5,
    REPLY_ROUTE_LIST_6 = 6,
    REPLY_HOP_LIST = 7,
    REPLY_PHSB = 11,
    REPLY_RSB = 12,
    REPLY_FILTER_SPEC = 13,
    REPLY_FLOW_DESCRIPTOR = 14,
    REPLY_PSB = 15,
    REPLY_CRLSP_NAME = 17,
    REPLY_P2MP_CRLSP = 31,
    REPLY_P2MP_SUB_LSP = 32,
    REPLY_P2MP_SUB_LSP_HOPS = 33,
    REPLY_P2MP_CRLSP_NAME = 34,
    REPLY_P2MP_PATH_STATE = 35,
    REPLY_P2MP_RESV_STATE = 36,
    REPLY_P2MP_SUB_GROUP = 37,
    REPLY_P2MP_SECOND_SENDER = 38,
    REPLY_P2MP_SLOTS = 39,
};

} // namespace rsvp_mor

#endif
