#include "visa/StatusText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zevisa {
namespace {

struct StatusRow {
  std::uint32_t status;
  const char* text;
};

constexpr StatusRow kStatusTexts[] = {
    {0x00000000, "VI_SUCCESS: operation completed successfully"},
    {0x3FFF0002,
     "VI_SUCCESS_EVENT_EN: event is already enabled for at least one of the mechanisms"},
    {0x3FFF0003,
     "VI_SUCCESS_EVENT_DIS: event is already disabled for at least one of the mechanisms"},
    {0x3FFF0004, "VI_SUCCESS_QUEUE_EMPTY: queue was empty already"},
    {0x3FFF0005, "VI_SUCCESS_TERM_CHAR: termination character was read"},
    {0x3FFF0006, "VI_SUCCESS_MAX_CNT: as many bytes as requested were read"},
    {0x3FFF000C,
     "VI_WARN_QUEUE_OVERFLOW: event received, earlier ones were lost because the queue was full"},
    {0x3FFF0077, "VI_WARN_CONFIG_NLOADED: configuration does not exist or could not be loaded"},
    {0x3FFF007D, "VI_SUCCESS_DEV_NPRESENT: session opened, but the device does not respond"},
    {0x3FFF007E, "VI_SUCCESS_TRIG_MAPPED: trigger path is mapped already"},
    {0x3FFF0080, "VI_SUCCESS_QUEUE_NEMPTY: event received, more events are in the queue"},
    {0x3FFF0082, "VI_WARN_NULL_OBJECT: object is not initialised"},
    {0x3FFF0084,
     "VI_WARN_NSUP_ATTR_STATE: attribute is set, but this resource does not support the value"},
    {0x3FFF0085, "VI_WARN_UNKNOWN_STATUS: status is not known"},
    {0x3FFF0088, "VI_WARN_NSUP_BUF: buffer is not supported"},
    {0x3FFF0098, "VI_SUCCESS_NCHAIN: event handled, further handlers are not to be called"},
    {0x3FFF0099, "VI_SUCCESS_NESTED_SHARED: session holds nested shared locks"},
    {0x3FFF009A, "VI_SUCCESS_NESTED_EXCLUSIVE: session holds nested exclusive locks"},
    {0x3FFF009B, "VI_SUCCESS_SYNC: asynchronous operation was carried out at once"},
    {0x3FFF00A9,
     "VI_WARN_EXT_FUNC_NIMPL: operation succeeded, an extended function is not implemented"},
    {0xBFFF0000, "VI_ERROR_SYSTEM_ERROR: unexpected system error"},
    {0xBFFF000E, "VI_ERROR_INV_OBJECT: session or object is not valid"},
    {0xBFFF000F, "VI_ERROR_RSRC_LOCKED: resource is locked by another session"},
    {0xBFFF0010, "VI_ERROR_INV_EXPR: search expression is not valid"},
    {0xBFFF0011, "VI_ERROR_RSRC_NFOUND: resource is not present or not reachable"},
    {0xBFFF0012, "VI_ERROR_INV_RSRC_NAME: resource name is not valid"},
    {0xBFFF0013, "VI_ERROR_INV_ACC_MODE: access mode is not valid"},
    {0xBFFF0015, "VI_ERROR_TMO: time-out before the operation completed"},
    {0xBFFF0016, "VI_ERROR_CLOSING_FAILED: session could not be closed properly"},
    {0xBFFF001B, "VI_ERROR_INV_DEGREE: degree of termination is not valid"},
    {0xBFFF001C, "VI_ERROR_INV_JOB_ID: job is not known"},
    {0xBFFF001D, "VI_ERROR_NSUP_ATTR: attribute is not supported by this object"},
    {0xBFFF001E, "VI_ERROR_NSUP_ATTR_STATE: value of the attribute is not supported"},
    {0xBFFF001F, "VI_ERROR_ATTR_READONLY: attribute can only be read"},
    {0xBFFF0020, "VI_ERROR_INV_LOCK_TYPE: lock type is not valid"},
    {0xBFFF0021, "VI_ERROR_INV_ACCESS_KEY: access key is not valid"},
    {0xBFFF0026, "VI_ERROR_INV_EVENT: event type is not supported by this resource"},
    {0xBFFF0027, "VI_ERROR_INV_MECH: event mechanism is not valid"},
    {0xBFFF0028, "VI_ERROR_HNDLR_NINSTALLED: no handler is installed for the event"},
    {0xBFFF0029, "VI_ERROR_INV_HNDLR_REF: handler reference is not valid"},
    {0xBFFF002A, "VI_ERROR_INV_CONTEXT: event context is not valid"},
    {0xBFFF002D, "VI_ERROR_QUEUE_OVERFLOW: event queue is full"},
    {0xBFFF002F, "VI_ERROR_NENABLED: event is not enabled"},
    {0xBFFF0030, "VI_ERROR_ABORT: operation was aborted"},
    {0xBFFF0034, "VI_ERROR_RAW_WR_PROT_VIOL: protocol violation while writing raw data"},
    {0xBFFF0035, "VI_ERROR_RAW_RD_PROT_VIOL: protocol violation while reading raw data"},
    {0xBFFF0036, "VI_ERROR_OUTP_PROT_VIOL: device reported an output protocol violation"},
    {0xBFFF0037, "VI_ERROR_INP_PROT_VIOL: device reported an input protocol violation"},
    {0xBFFF0038, "VI_ERROR_BERR: bus error"},
    {0xBFFF0039, "VI_ERROR_IN_PROGRESS: operation is in progress already"},
    {0xBFFF003A, "VI_ERROR_INV_SETUP: set-up is not valid, attributes contradict each other"},
    {0xBFFF003B, "VI_ERROR_QUEUE_ERROR: asynchronous operation could not be queued"},
    {0xBFFF003C, "VI_ERROR_ALLOC: not enough memory or handles"},
    {0xBFFF003D, "VI_ERROR_INV_MASK: buffer mask is not valid"},
    {0xBFFF003E, "VI_ERROR_IO: input or output error"},
    {0xBFFF003F, "VI_ERROR_INV_FMT: format specifier is not valid"},
    {0xBFFF0041, "VI_ERROR_NSUP_FMT: format specifier is not supported"},
    {0xBFFF0042, "VI_ERROR_LINE_IN_USE: trigger line is in use"},
    {0xBFFF0043, "VI_ERROR_LINE_NRESERVED: trigger line was not reserved"},
    {0xBFFF0046, "VI_ERROR_NSUP_MODE: mode is not supported"},
    {0xBFFF004A, "VI_ERROR_SRQ_NOCCURRED: no service request was received"},
    {0xBFFF004E, "VI_ERROR_INV_SPACE: address space is not valid"},
    {0xBFFF0051, "VI_ERROR_INV_OFFSET: offset is not valid"},
    {0xBFFF0052, "VI_ERROR_INV_WIDTH: access width is not valid"},
    {0xBFFF0054, "VI_ERROR_NSUP_OFFSET: offset is not accessible"},
    {0xBFFF0055, "VI_ERROR_NSUP_VAR_WIDTH: source and destination widths must be equal"},
    {0xBFFF0057, "VI_ERROR_WINDOW_NMAPPED: no window is mapped"},
    {0xBFFF0059, "VI_ERROR_RESP_PENDING: an earlier response is still pending"},
    {0xBFFF005F, "VI_ERROR_NLISTENERS: no listeners were detected"},
    {0xBFFF0060, "VI_ERROR_NCIC: interface is not the controller in charge"},
    {0xBFFF0061, "VI_ERROR_NSYS_CNTLR: interface is not the system controller"},
    {0xBFFF0067, "VI_ERROR_NSUP_OPER: operation is not supported"},
    {0xBFFF0068, "VI_ERROR_INTR_PENDING: an earlier interrupt is still pending"},
    {0xBFFF006A, "VI_ERROR_ASRL_PARITY: parity error"},
    {0xBFFF006B, "VI_ERROR_ASRL_FRAMING: framing error"},
    {0xBFFF006C, "VI_ERROR_ASRL_OVERRUN: characters were lost in an overrun"},
    {0xBFFF006E, "VI_ERROR_TRIG_NMAPPED: trigger path is not mapped"},
    {0xBFFF0070, "VI_ERROR_NSUP_ALIGN_OFFSET: offset is not aligned for the access width"},
    {0xBFFF0071, "VI_ERROR_USER_BUF: buffer is not valid or cannot be accessed"},
    {0xBFFF0072, "VI_ERROR_RSRC_BUSY: resource is busy"},
    {0xBFFF0076, "VI_ERROR_NSUP_WIDTH: access width is not supported"},
    {0xBFFF0078, "VI_ERROR_INV_PARAMETER: a parameter is not valid"},
    {0xBFFF0079, "VI_ERROR_INV_PROT: protocol is not valid"},
    {0xBFFF007B, "VI_ERROR_INV_SIZE: window size is not valid"},
    {0xBFFF0080, "VI_ERROR_WINDOW_MAPPED: a window is mapped already"},
    {0xBFFF0081, "VI_ERROR_NIMPL_OPER: operation is not implemented"},
    {0xBFFF0083, "VI_ERROR_INV_LENGTH: length is not valid"},
    {0xBFFF0091, "VI_ERROR_INV_MODE: mode is not valid"},
    {0xBFFF009C, "VI_ERROR_SESN_NLOCKED: session holds no lock"},
    {0xBFFF009D, "VI_ERROR_MEM_NSHARED: memory is not shared"},
    {0xBFFF009E,
     "VI_ERROR_LIBRARY_NFOUND: a library that is needed was not found or could not be loaded"},
    {0xBFFF009F, "VI_ERROR_NSUP_INTR: interrupt is not supported"},
    {0xBFFF00A0, "VI_ERROR_INV_LINE: line is not valid"},
    {0xBFFF00A1, "VI_ERROR_FILE_ACCESS: file could not be opened"},
    {0xBFFF00A2, "VI_ERROR_FILE_IO: error while reading or writing a file"},
    {0xBFFF00A3, "VI_ERROR_NSUP_LINE: line is not supported"},
    {0xBFFF00A4, "VI_ERROR_NSUP_MECH: event mechanism is not supported"},
    {0xBFFF00A5, "VI_ERROR_INTF_NUM_NCONFIG: interface number is not configured"},
    {0xBFFF00A6, "VI_ERROR_CONN_LOST: connection to the instrument is lost"},
    {0xBFFF00A7, "VI_ERROR_MACHINE_NAVAIL: remote machine is not available"},
    {0xBFFF00A8, "VI_ERROR_NPERMISSION: access is not permitted"},
};
static_assert(std::ranges::is_sorted(kStatusTexts, {}, &StatusRow::status));

}  // namespace

std::string_view StatusText(ViStatus status) {
  const auto code = static_cast<std::uint32_t>(status);
  const StatusRow* const row = std::ranges::lower_bound(kStatusTexts, code, {}, &StatusRow::status);
  return row != std::end(kStatusTexts) && row->status == code ? row->text : std::string_view();
}

}  // namespace zevisa
