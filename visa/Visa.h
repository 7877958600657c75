// The VISA library's binary interface (VPP-4.3.2): types, the constants in use, and the entry
// points that clients look up by name. Included by the library itself and by those who load it; it
// drags nothing else in.
#pragma once

#include <stdarg.h>
#include <stdint.h>

using ViInt16 = int16_t;
using ViUInt8 = uint8_t;
using ViUInt16 = uint16_t;
using ViUInt32 = uint32_t;
using ViUInt64 = uint64_t;
using ViByte = uint8_t;
using ViBoolean = uint16_t;
using ViStatus = int32_t;
using ViObject = uint32_t;
using ViSession = ViObject;
using ViFindList = ViObject;
using ViEvent = ViObject;
using ViAttr = uint32_t;
/// Wide enough for a pointer or a 64-bit value on x64.
using ViAttrState = uint64_t;
using ViAccessMode = uint32_t;
using ViEventType = uint32_t;
using ViEventFilter = uint32_t;
using ViJobId = uint32_t;
using ViBusAddress = uint64_t;
using ViBusAddress64 = uint64_t;
using ViBusSize = uint64_t;
using ViVAList = va_list;
using ViHndlr = ViStatus (*)(ViSession session, ViEventType type, ViEvent context, void* user);

// Access modes of viOpen and lock types of viLock.
inline constexpr ViAccessMode VI_EXCLUSIVE_LOCK = 1;
inline constexpr ViAccessMode VI_SHARED_LOCK = 2;
inline constexpr ViAccessMode VI_LOAD_CONFIG = 4;

// Time-outs, in milliseconds.
inline constexpr ViUInt32 VI_TMO_IMMEDIATE = 0;
inline constexpr ViUInt32 VI_TMO_INFINITE = 0xFFFFFFFF;

// Buffers of viSetBuf, and what viFlush does with them: one flag a buffer.
inline constexpr ViUInt16 VI_READ_BUF = 1;
inline constexpr ViUInt16 VI_WRITE_BUF = 2;
inline constexpr ViUInt16 VI_READ_BUF_DISCARD = 4;
inline constexpr ViUInt16 VI_WRITE_BUF_DISCARD = 8;
inline constexpr ViUInt16 VI_IO_IN_BUF = 16;
inline constexpr ViUInt16 VI_IO_OUT_BUF = 32;
inline constexpr ViUInt16 VI_IO_IN_BUF_DISCARD = 64;
inline constexpr ViUInt16 VI_IO_OUT_BUF_DISCARD = 128;

/// Modes of the write buffer.
inline constexpr ViUInt16 VI_FLUSH_ON_ACCESS = 1;
inline constexpr ViUInt16 VI_FLUSH_WHEN_FULL = 2;

// Protocols of a session: bytes as they are, and besides them the common commands in text.
inline constexpr ViUInt16 VI_PROT_NORMAL = 1;
inline constexpr ViUInt16 VI_PROT_4882_STRS = 4;

/// The interface type of TCP/IP resources.
inline constexpr ViUInt16 VI_INTF_TCPIP = 6;
/// The buffers that clients give for texts have this many bytes.
inline constexpr ViUInt32 VI_FIND_BUFLEN = 256;

// Attributes: the width in bits, or text.
inline constexpr ViAttr VI_ATTR_RSRC_CLASS = 0xBFFF0001;         ///< text
inline constexpr ViAttr VI_ATTR_RSRC_NAME = 0xBFFF0002;          ///< text
inline constexpr ViAttr VI_ATTR_RSRC_IMPL_VERSION = 0x3FFF0003;  ///< 32: major 12, minor 12, sub 8
inline constexpr ViAttr VI_ATTR_RSRC_LOCK_STATE = 0x3FFF0004;    ///< 32: 0, or a lock type
inline constexpr ViAttr VI_ATTR_MAX_QUEUE_LENGTH = 0x3FFF0005;   ///< 32
inline constexpr ViAttr VI_ATTR_USER_DATA_32 = 0x3FFF0007;       ///< 32
inline constexpr ViAttr VI_ATTR_USER_DATA = 0x3FFF000A;          ///< 64
inline constexpr ViAttr VI_ATTR_SEND_END_EN = 0x3FFF0016;        ///< 16
inline constexpr ViAttr VI_ATTR_TERMCHAR = 0x3FFF0018;           ///< 8
inline constexpr ViAttr VI_ATTR_TMO_VALUE = 0x3FFF001A;          ///< 32: milliseconds
inline constexpr ViAttr VI_ATTR_IO_PROT = 0x3FFF001C;            ///< 16
inline constexpr ViAttr VI_ATTR_DMA_ALLOW_EN = 0x3FFF001E;       ///< 16
inline constexpr ViAttr VI_ATTR_RD_BUF_OPER_MODE = 0x3FFF002A;   ///< 16
inline constexpr ViAttr VI_ATTR_RD_BUF_SIZE = 0x3FFF002B;        ///< 32: bytes
inline constexpr ViAttr VI_ATTR_WR_BUF_OPER_MODE = 0x3FFF002D;   ///< 16
inline constexpr ViAttr VI_ATTR_WR_BUF_SIZE = 0x3FFF002E;        ///< 32: bytes
inline constexpr ViAttr VI_ATTR_SUPPRESS_END_EN = 0x3FFF0036;    ///< 16
inline constexpr ViAttr VI_ATTR_TERMCHAR_EN = 0x3FFF0038;        ///< 16
inline constexpr ViAttr VI_ATTR_RM_SESSION = 0x3FFF00C4;         ///< 32
inline constexpr ViAttr VI_ATTR_INTF_INST_NAME = 0xBFFF00E9;     ///< text
inline constexpr ViAttr VI_ATTR_RSRC_SPEC_VERSION = 0x3FFF0170;  ///< 32
inline constexpr ViAttr VI_ATTR_INTF_TYPE = 0x3FFF0171;          ///< 16
inline constexpr ViAttr VI_ATTR_RSRC_MANF_NAME = 0xBFFF0174;     ///< text
inline constexpr ViAttr VI_ATTR_RSRC_MANF_ID = 0x3FFF0175;       ///< 16
inline constexpr ViAttr VI_ATTR_INTF_NUM = 0x3FFF0176;           ///< 16
inline constexpr ViAttr VI_ATTR_FILE_APPEND_EN = 0x3FFF0192;     ///< 16
inline constexpr ViAttr VI_ATTR_TCPIP_ADDR = 0xBFFF0195;         ///< text
inline constexpr ViAttr VI_ATTR_TCPIP_HOSTNAME = 0xBFFF0196;     ///< text
inline constexpr ViAttr VI_ATTR_TCPIP_PORT = 0x3FFF0197;         ///< 16
inline constexpr ViAttr VI_ATTR_TCPIP_NODELAY = 0x3FFF019A;      ///< 16
inline constexpr ViAttr VI_ATTR_TCPIP_KEEPALIVE = 0x3FFF019B;    ///< 16

/// Of this maker: who holds the lock on the instrument, for people, "process 1234 (zk4n)"; empty
/// when nobody does or the system does not tell. Text, read-only; it may be asked while others hold
/// it.
inline constexpr ViAttr VI_ATTR_ZENTREL_LOCK_OWNER = 0xBFFA0001;

/// Of this maker: the settings file in force, empty when there is none. Of a resource manager the
/// one that the next viOpen would read, of a session the one that its viOpen read. Text, read-only.
inline constexpr ViAttr VI_ATTR_ZENTREL_SETTINGS_FILE = 0xBFFA0002;
/// Of this maker: the section of that file which a session follows; empty when none is its. Text,
/// read-only.
inline constexpr ViAttr VI_ATTR_ZENTREL_SETTINGS_SECTION = 0xBFFA0003;
/// Of this maker, of resource managers: this one and those behind it tell what makes no sense in
/// the settings file, "line 3: no such key: colour", a text each; VI_ERROR_NSUP_ATTR behind the
/// last one.
inline constexpr ViAttr VI_ATTR_ZENTREL_SETTINGS_PROBLEM = 0xBFFA1000;

// Statuses that the library gives or that clients test.
inline constexpr ViStatus VI_SUCCESS = 0;
inline constexpr ViStatus VI_SUCCESS_EVENT_DIS = 0x3FFF0003;
inline constexpr ViStatus VI_SUCCESS_QUEUE_EMPTY = 0x3FFF0004;
inline constexpr ViStatus VI_SUCCESS_TERM_CHAR = 0x3FFF0005;
inline constexpr ViStatus VI_SUCCESS_MAX_CNT = 0x3FFF0006;
inline constexpr ViStatus VI_WARN_NULL_OBJECT = 0x3FFF0082;
inline constexpr ViStatus VI_WARN_UNKNOWN_STATUS = 0x3FFF0085;
inline constexpr ViStatus VI_WARN_NSUP_BUF = 0x3FFF0088;
inline constexpr ViStatus VI_SUCCESS_NESTED_SHARED = 0x3FFF0099;
inline constexpr ViStatus VI_SUCCESS_NESTED_EXCLUSIVE = 0x3FFF009A;
inline constexpr ViStatus VI_ERROR_SYSTEM_ERROR = static_cast<ViStatus>(0xBFFF0000);
inline constexpr ViStatus VI_ERROR_INV_OBJECT = static_cast<ViStatus>(0xBFFF000E);
inline constexpr ViStatus VI_ERROR_RSRC_LOCKED = static_cast<ViStatus>(0xBFFF000F);
inline constexpr ViStatus VI_ERROR_RSRC_NFOUND = static_cast<ViStatus>(0xBFFF0011);
inline constexpr ViStatus VI_ERROR_INV_RSRC_NAME = static_cast<ViStatus>(0xBFFF0012);
inline constexpr ViStatus VI_ERROR_INV_ACC_MODE = static_cast<ViStatus>(0xBFFF0013);
inline constexpr ViStatus VI_ERROR_TMO = static_cast<ViStatus>(0xBFFF0015);
inline constexpr ViStatus VI_ERROR_INV_DEGREE = static_cast<ViStatus>(0xBFFF001B);
inline constexpr ViStatus VI_ERROR_INV_JOB_ID = static_cast<ViStatus>(0xBFFF001C);
inline constexpr ViStatus VI_ERROR_NSUP_ATTR = static_cast<ViStatus>(0xBFFF001D);
inline constexpr ViStatus VI_ERROR_NSUP_ATTR_STATE = static_cast<ViStatus>(0xBFFF001E);
inline constexpr ViStatus VI_ERROR_ATTR_READONLY = static_cast<ViStatus>(0xBFFF001F);
inline constexpr ViStatus VI_ERROR_INV_LOCK_TYPE = static_cast<ViStatus>(0xBFFF0020);
inline constexpr ViStatus VI_ERROR_INV_ACCESS_KEY = static_cast<ViStatus>(0xBFFF0021);
inline constexpr ViStatus VI_ERROR_INV_EVENT = static_cast<ViStatus>(0xBFFF0026);
inline constexpr ViStatus VI_ERROR_ABORT = static_cast<ViStatus>(0xBFFF0030);
inline constexpr ViStatus VI_ERROR_INP_PROT_VIOL = static_cast<ViStatus>(0xBFFF0037);
inline constexpr ViStatus VI_ERROR_ALLOC = static_cast<ViStatus>(0xBFFF003C);
inline constexpr ViStatus VI_ERROR_INV_MASK = static_cast<ViStatus>(0xBFFF003D);
inline constexpr ViStatus VI_ERROR_IO = static_cast<ViStatus>(0xBFFF003E);
inline constexpr ViStatus VI_ERROR_NSUP_OPER = static_cast<ViStatus>(0xBFFF0067);
inline constexpr ViStatus VI_ERROR_USER_BUF = static_cast<ViStatus>(0xBFFF0071);
inline constexpr ViStatus VI_ERROR_INV_PROT = static_cast<ViStatus>(0xBFFF0079);
inline constexpr ViStatus VI_ERROR_SESN_NLOCKED = static_cast<ViStatus>(0xBFFF009C);
inline constexpr ViStatus VI_ERROR_LIBRARY_NFOUND = static_cast<ViStatus>(0xBFFF009E);
inline constexpr ViStatus VI_ERROR_FILE_ACCESS = static_cast<ViStatus>(0xBFFF00A1);
inline constexpr ViStatus VI_ERROR_FILE_IO = static_cast<ViStatus>(0xBFFF00A2);
inline constexpr ViStatus VI_ERROR_CONN_LOST = static_cast<ViStatus>(0xBFFF00A6);

#ifdef _WIN32
#define ZK_VISA_EXPORT __declspec(dllexport)
#else
#define ZK_VISA_EXPORT __attribute__((visibility("default")))
#endif

#ifdef ZK_VISA_LIBRARY
#define ZK_VISA ZK_VISA_EXPORT
#else
#define ZK_VISA
#endif

extern "C" {
ZK_VISA ViStatus viOpenDefaultRM(ViSession* manager);
ZK_VISA ViStatus viParseRsrcEx(ViSession manager, const char* name, ViUInt16* interface_type,
                               ViUInt16* interface_number, char* resource_class,
                               char* expanded_name, char* alias);
ZK_VISA ViStatus viOpen(ViSession manager, const char* name, ViAccessMode mode, ViUInt32 timeout,
                        ViSession* session);
ZK_VISA ViStatus viFindRsrc(ViSession manager, const char* expression, ViFindList* list,
                            ViUInt32* count, char* description);
ZK_VISA ViStatus viFindNext(ViFindList list, char* description);
ZK_VISA ViStatus viParseRsrc(ViSession manager, const char* name, ViUInt16* interface_type,
                             ViUInt16* interface_number);
ZK_VISA ViStatus viClose(ViObject object);
ZK_VISA ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value);
ZK_VISA ViStatus viGetAttribute(ViObject object, ViAttr attribute, void* value);
ZK_VISA ViStatus viStatusDesc(ViObject object, ViStatus status, char* description);
ZK_VISA ViStatus viTerminate(ViObject object, ViUInt16 degree, ViJobId job);
ZK_VISA ViStatus viLock(ViSession session, ViAccessMode type, ViUInt32 timeout,
                        const char* requested_key, char* access_key);
ZK_VISA ViStatus viUnlock(ViSession session);
ZK_VISA ViStatus viEnableEvent(ViSession session, ViEventType type, ViUInt16 mechanism,
                               ViEventFilter context);
ZK_VISA ViStatus viDisableEvent(ViSession session, ViEventType type, ViUInt16 mechanism);
ZK_VISA ViStatus viDiscardEvents(ViSession session, ViEventType type, ViUInt16 mechanism);
ZK_VISA ViStatus viWaitOnEvent(ViSession session, ViEventType type, ViUInt32 timeout,
                               ViEventType* out_type, ViEvent* out_context);
ZK_VISA ViStatus viInstallHandler(ViSession session, ViEventType type, ViHndlr handler, void* user);
ZK_VISA ViStatus viUninstallHandler(ViSession session, ViEventType type, ViHndlr handler,
                                    void* user);
ZK_VISA ViStatus viRead(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned);
ZK_VISA ViStatus viReadAsync(ViSession session, ViByte* buffer, ViUInt32 count, ViJobId* job);
ZK_VISA ViStatus viReadToFile(ViSession session, const char* file_name, ViUInt32 count,
                              ViUInt32* returned);
ZK_VISA ViStatus viWrite(ViSession session, const ViByte* buffer, ViUInt32 count,
                         ViUInt32* returned);
ZK_VISA ViStatus viWriteAsync(ViSession session, const ViByte* buffer, ViUInt32 count,
                              ViJobId* job);
ZK_VISA ViStatus viWriteFromFile(ViSession session, const char* file_name, ViUInt32 count,
                                 ViUInt32* returned);
ZK_VISA ViStatus viAssertTrigger(ViSession session, ViUInt16 protocol);
ZK_VISA ViStatus viReadSTB(ViSession session, ViUInt16* status);
ZK_VISA ViStatus viClear(ViSession session);
ZK_VISA ViStatus viSetBuf(ViSession session, ViUInt16 mask, ViUInt32 size);
ZK_VISA ViStatus viFlush(ViSession session, ViUInt16 mask);
ZK_VISA ViStatus viBufWrite(ViSession session, const ViByte* buffer, ViUInt32 count,
                            ViUInt32* returned);
ZK_VISA ViStatus viBufRead(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned);
ZK_VISA ViStatus viPrintf(ViSession session, const char* format, ...);
ZK_VISA ViStatus viVPrintf(ViSession session, const char* format, ViVAList parameters);
ZK_VISA ViStatus viSPrintf(ViSession session, ViByte* buffer, const char* format, ...);
ZK_VISA ViStatus viVSPrintf(ViSession session, ViByte* buffer, const char* format,
                            ViVAList parameters);
ZK_VISA ViStatus viScanf(ViSession session, const char* format, ...);
ZK_VISA ViStatus viVScanf(ViSession session, const char* format, ViVAList parameters);
ZK_VISA ViStatus viSScanf(ViSession session, const ViByte* buffer, const char* format, ...);
ZK_VISA ViStatus viVSScanf(ViSession session, const ViByte* buffer, const char* format,
                           ViVAList parameters);
ZK_VISA ViStatus viQueryf(ViSession session, const char* write_format, const char* read_format,
                          ...);
ZK_VISA ViStatus viVQueryf(ViSession session, const char* write_format, const char* read_format,
                           ViVAList parameters);
ZK_VISA ViStatus viIn8(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt8* value);
ZK_VISA ViStatus viOut8(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt8 value);
ZK_VISA ViStatus viIn16(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt16* value);
ZK_VISA ViStatus viOut16(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt16 value);
ZK_VISA ViStatus viIn32(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt32* value);
ZK_VISA ViStatus viOut32(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt32 value);
ZK_VISA ViStatus viIn64(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt64* value);
ZK_VISA ViStatus viOut64(ViSession session, ViUInt16 space, ViBusAddress offset, ViUInt64 value);
ZK_VISA ViStatus viIn8Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset, ViUInt8* value);
ZK_VISA ViStatus viOut8Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset, ViUInt8 value);
ZK_VISA ViStatus viIn16Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                          ViUInt16* value);
ZK_VISA ViStatus viOut16Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                           ViUInt16 value);
ZK_VISA ViStatus viIn32Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                          ViUInt32* value);
ZK_VISA ViStatus viOut32Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                           ViUInt32 value);
ZK_VISA ViStatus viIn64Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                          ViUInt64* value);
ZK_VISA ViStatus viOut64Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                           ViUInt64 value);
ZK_VISA ViStatus viMoveIn8(ViSession session, ViUInt16 space, ViBusAddress offset, ViBusSize length,
                           ViUInt8* buffer);
ZK_VISA ViStatus viMoveOut8(ViSession session, ViUInt16 space, ViBusAddress offset,
                            ViBusSize length, ViUInt8* buffer);
ZK_VISA ViStatus viMoveIn16(ViSession session, ViUInt16 space, ViBusAddress offset,
                            ViBusSize length, ViUInt16* buffer);
ZK_VISA ViStatus viMoveOut16(ViSession session, ViUInt16 space, ViBusAddress offset,
                             ViBusSize length, ViUInt16* buffer);
ZK_VISA ViStatus viMoveIn32(ViSession session, ViUInt16 space, ViBusAddress offset,
                            ViBusSize length, ViUInt32* buffer);
ZK_VISA ViStatus viMoveOut32(ViSession session, ViUInt16 space, ViBusAddress offset,
                             ViBusSize length, ViUInt32* buffer);
ZK_VISA ViStatus viMoveIn64(ViSession session, ViUInt16 space, ViBusAddress offset,
                            ViBusSize length, ViUInt64* buffer);
ZK_VISA ViStatus viMoveOut64(ViSession session, ViUInt16 space, ViBusAddress offset,
                             ViBusSize length, ViUInt64* buffer);
ZK_VISA ViStatus viMoveIn8Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                             ViBusSize length, ViUInt8* buffer);
ZK_VISA ViStatus viMoveOut8Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                              ViBusSize length, ViUInt8* buffer);
ZK_VISA ViStatus viMoveIn16Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                              ViBusSize length, ViUInt16* buffer);
ZK_VISA ViStatus viMoveOut16Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                               ViBusSize length, ViUInt16* buffer);
ZK_VISA ViStatus viMoveIn32Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                              ViBusSize length, ViUInt32* buffer);
ZK_VISA ViStatus viMoveOut32Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                               ViBusSize length, ViUInt32* buffer);
ZK_VISA ViStatus viMoveIn64Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                              ViBusSize length, ViUInt64* buffer);
ZK_VISA ViStatus viMoveOut64Ex(ViSession session, ViUInt16 space, ViBusAddress64 offset,
                               ViBusSize length, ViUInt64* buffer);
ZK_VISA ViStatus viMove(ViSession session, ViUInt16 source_space, ViBusAddress source,
                        ViUInt16 source_width, ViUInt16 target_space, ViBusAddress target,
                        ViUInt16 target_width, ViBusSize length);
ZK_VISA ViStatus viMoveAsync(ViSession session, ViUInt16 source_space, ViBusAddress source,
                             ViUInt16 source_width, ViUInt16 target_space, ViBusAddress target,
                             ViUInt16 target_width, ViBusSize length, ViJobId* job);
ZK_VISA ViStatus viMoveEx(ViSession session, ViUInt16 source_space, ViBusAddress64 source,
                          ViUInt16 source_width, ViUInt16 target_space, ViBusAddress64 target,
                          ViUInt16 target_width, ViBusSize length);
ZK_VISA ViStatus viMoveAsyncEx(ViSession session, ViUInt16 source_space, ViBusAddress64 source,
                               ViUInt16 source_width, ViUInt16 target_space, ViBusAddress64 target,
                               ViUInt16 target_width, ViBusSize length, ViJobId* job);
ZK_VISA ViStatus viMapAddress(ViSession session, ViUInt16 space, ViBusAddress base, ViBusSize size,
                              ViBoolean access, void* suggested, void** address);
ZK_VISA ViStatus viUnmapAddress(ViSession session);
ZK_VISA ViStatus viMapAddressEx(ViSession session, ViUInt16 space, ViBusAddress64 base,
                                ViBusSize size, ViBoolean access, void* suggested, void** address);
ZK_VISA void viPeek8(ViSession session, void* address, ViUInt8* value);
ZK_VISA void viPoke8(ViSession session, void* address, ViUInt8 value);
ZK_VISA void viPeek16(ViSession session, void* address, ViUInt16* value);
ZK_VISA void viPoke16(ViSession session, void* address, ViUInt16 value);
ZK_VISA void viPeek32(ViSession session, void* address, ViUInt32* value);
ZK_VISA void viPoke32(ViSession session, void* address, ViUInt32 value);
ZK_VISA void viPeek64(ViSession session, void* address, ViUInt64* value);
ZK_VISA void viPoke64(ViSession session, void* address, ViUInt64 value);
ZK_VISA ViStatus viMemAlloc(ViSession session, ViBusSize size, ViBusAddress* offset);
ZK_VISA ViStatus viMemFree(ViSession session, ViBusAddress offset);
ZK_VISA ViStatus viMemAllocEx(ViSession session, ViBusSize size, ViBusAddress64* offset);
ZK_VISA ViStatus viMemFreeEx(ViSession session, ViBusAddress64 offset);
ZK_VISA ViStatus viGpibControlREN(ViSession session, ViUInt16 mode);
ZK_VISA ViStatus viGpibControlATN(ViSession session, ViUInt16 mode);
ZK_VISA ViStatus viGpibSendIFC(ViSession session);
ZK_VISA ViStatus viGpibCommand(ViSession session, const ViByte* command, ViUInt32 count,
                               ViUInt32* returned);
ZK_VISA ViStatus viGpibPassControl(ViSession session, ViUInt16 primary, ViUInt16 secondary);
ZK_VISA ViStatus viVxiCommandQuery(ViSession session, ViUInt16 mode, ViUInt32 command,
                                   ViUInt32* response);
ZK_VISA ViStatus viAssertUtilSignal(ViSession session, ViUInt16 line);
ZK_VISA ViStatus viAssertIntrSignal(ViSession session, ViInt16 mode, ViUInt32 status_id);
ZK_VISA ViStatus viMapTrigger(ViSession session, ViInt16 source, ViInt16 destination,
                              ViUInt16 mode);
ZK_VISA ViStatus viUnmapTrigger(ViSession session, ViInt16 source, ViInt16 destination);
ZK_VISA ViStatus viUsbControlOut(ViSession session, ViInt16 request_type, ViInt16 request,
                                 ViUInt16 value, ViUInt16 index, ViUInt16 length,
                                 const ViByte* buffer);
ZK_VISA ViStatus viUsbControlIn(ViSession session, ViInt16 request_type, ViInt16 request,
                                ViUInt16 value, ViUInt16 index, ViUInt16 length, ViByte* buffer,
                                ViUInt16* returned);
}  // extern "C"
