// Scalar types, values and constants of the Common Manageability Programming Interface (CMPI), the C binary
// interface between a CIM object manager and its providers. Layouts and numbers are fixed by the DMTF/Open Group
// standard and hold for x86-64 and i386; tests/contract/cmpi asserts every one of them. The structs must stay
// trivially copyable: they are passed and returned by value across the C boundary.
#pragma once

#include <cstdint>

using CMPIBoolean = unsigned char;
using CMPIChar16 = unsigned short;
using CMPIUint8 = unsigned char;
using CMPIUint16 = unsigned short;
using CMPIUint32 = unsigned int;
using CMPIUint64 = unsigned long long;
using CMPISint8 = signed char;
using CMPISint16 = short;
using CMPISint32 = int;
using CMPISint64 = long long;
using CMPIReal32 = float;
using CMPIReal64 = double;
using CMPICount = unsigned int;
using CMPIFlags = unsigned int;
using CMPIVersion = int;
using CMPIType = unsigned short;
using CMPIValueState = unsigned short;
using CMPIMsgFileHandle = void*;
using CMPIGcStat = void;

using CMPI_THREAD_TYPE = void*;
using CMPI_THREAD_RETURN = void*;
using CMPI_MUTEX_TYPE = void*;
using CMPI_COND_TYPE = void*;
using CMPI_THREAD_KEY_TYPE = unsigned int;

extern "C" {

struct CMPIObjectPath;
struct CMPIInstance;
struct CMPIArgs;
struct CMPIString;
struct CMPIArray;
struct CMPIEnumeration;
struct CMPIDateTime;
struct CMPIContext;
struct CMPIResult;
struct CMPISelectExp;
struct CMPISelectCond;
struct CMPISubCond;
struct CMPIPredicate;
struct CMPIError;
struct CMPIPropertyList;
struct CMPIEnumerationFilter;
struct CMPIBroker;
struct timespec;

using CMPIThreadFunc = void* (*)(void*);
using CMPIThreadOnceFunc = void (*)();
using CMPIThreadKeyCleanupFunc = void (*)(void*);

struct CMPIValuePtr {
    void* ptr;
    CMPICount length;
};

// One CIM value; which member holds it follows from the CMPIType beside it.
union CMPIValue {
    CMPIBoolean boolean;
    CMPIChar16 char16;
    CMPIUint8 uint8;
    CMPIUint16 uint16;
    CMPIUint32 uint32;
    CMPIUint64 uint64;
    CMPISint8 sint8;
    CMPISint16 sint16;
    CMPISint32 sint32;
    CMPISint64 sint64;
    CMPIReal32 real32;
    CMPIReal64 real64;
    CMPIInstance* inst;
    CMPIObjectPath* ref;
    CMPIArgs* args;
    CMPISelectExp* filter;
    CMPIEnumeration* Enum;
    CMPIArray* array;
    CMPIString* string;
    char* chars;
    CMPIDateTime* dateTime;
    CMPIValuePtr dataPtr;
    CMPISint8 Byte;
    CMPISint16 Short;
    CMPISint32 Int;
    CMPISint64 Long;
    CMPIReal32 Float;
    CMPIReal64 Double;
};

struct CMPIData {
    CMPIType type;
    CMPIValueState state;
    CMPIValue value;
};

// Gives the value of a named property to a select expression.
using CMPIAccessor = CMPIData(const char* propertyName, void* parm);

// Result of a call; servers may hand over codes that are not listed, hence the fixed underlying type.
enum CMPIrc : int {
    CMPI_RC_OK = 0,
    CMPI_RC_ERR_FAILED = 1,
    CMPI_RC_ERR_ACCESS_DENIED = 2,
    CMPI_RC_ERR_INVALID_NAMESPACE = 3,
    CMPI_RC_ERR_INVALID_PARAMETER = 4,
    CMPI_RC_ERR_INVALID_CLASS = 5,
    CMPI_RC_ERR_NOT_FOUND = 6,
    CMPI_RC_ERR_NOT_SUPPORTED = 7,
    CMPI_RC_ERR_CLASS_HAS_CHILDREN = 8,
    CMPI_RC_ERR_CLASS_HAS_INSTANCES = 9,
    CMPI_RC_ERR_INVALID_SUPERCLASS = 10,
    CMPI_RC_ERR_ALREADY_EXISTS = 11,
    CMPI_RC_ERR_NO_SUCH_PROPERTY = 12,
    CMPI_RC_ERR_TYPE_MISMATCH = 13,
    CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED = 14,
    CMPI_RC_ERR_INVALID_QUERY = 15,
    CMPI_RC_ERR_METHOD_NOT_AVAILABLE = 16,
    CMPI_RC_ERR_METHOD_NOT_FOUND = 17,
    CMPI_RC_NO_MORE_ELEMENTS = 18,
    CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED = 27,
    CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED = 29,
    CMPI_RC_DO_NOT_UNLOAD = 50,
    CMPI_RC_NEVER_UNLOAD = 51,
    CMPI_RC_ERR_INVALID_HANDLE = 60,
    CMPI_RC_ERR_INVALID_DATA_TYPE = 61,
    CMPI_RC_ERR_NOT_IN_CODEPAGE = 62,
    CMPI_RC_ERROR_SYSTEM = 100,
    CMPI_RC_ERROR = 200,
};

struct CMPIStatus {
    CMPIrc rc;
    CMPIString* msg;
};

enum CMPIPredOp : int {
    CMPI_PredOp_Equals = 1,
    CMPI_PredOp_NotEquals = 2,
    CMPI_PredOp_LessThan = 3,
    CMPI_PredOp_GreaterThanOrEquals = 4,
    CMPI_PredOp_GreaterThan = 5,
    CMPI_PredOp_LessThanOrEquals = 6,
    CMPI_PredOp_Isa = 7,
    CMPI_PredOp_NotIsa = 8,
    CMPI_PredOp_Like = 9,
    CMPI_PredOp_NotLike = 10,
    CMPI_PredOp_Not_Null = 11,
    CMPI_PredOp_Null = 12,
    CMPI_PredOp_And = 13,
    CMPI_PredOp_Or = 14,
};

enum CMPISelectCondType : int {
    CMPI_COND_DOC = 0,
    CMPI_COND_COD = 1,
};

enum CMPISeverity : int {
    CMPI_SEV_ERROR = 1,
    CMPI_SEV_INFO = 2,
    CMPI_SEV_WARNING = 3,
    CMPI_DEV_DEBUG = 4,
};

enum CMPILevel : int {
    CMPI_LEV_INFO = 1,
    CMPI_LEV_WARNING = 2,
    CMPI_LEV_VERBOSE = 3,
};

enum CMPICodepageID : int {
    CMPI_CPID_SYSTEM = 1,
    CMPI_CPID_USASCII = 2,
    CMPI_CPID_UTF16 = 3,
};

enum CMPIErrorType : int {
    UnknownErrorType = 0,
    OtherErrorType = 1,
    CommunicationsError = 2,
    QualityOfServiceError = 3,
    SoftwareError = 4,
    HardwareError = 5,
    EnvironmentalError = 6,
    SecurityError = 7,
    OversubscriptionError = 8,
    Oversubscription_Error = 8,
    UnavailableResourceError = 9,
    UnsupportedOperationError = 10,
};

enum CMPIErrorSeverity : int {
    ErrorSevUnknown = 0,
    ErrorSevLow = 2,
    ErrorSevMedium = 3,
    ErrorSevHigh = 4,
    ErrorSevFatal = 5,
};

enum CMPIErrorSrcFormat : int {
    CMPIErrSrcUnknown = 0,
    CMPIErrSrcOther = 1,
    CIMObjectHandle = 2,
};

// Probable causes as CIM_AlertIndication numbers them.
enum CMPIErrorProbableCause : int {
    ErrorProbCauseUnknown = 0,
    ErrorProbCauseOther = 1,
    Adapter_Card_Error = 2,
    Application_Subsystem_Failure = 3,
    Bandwidth_Reduced = 4,
    Connection_Establishment_Error = 5,
    Communications_Protocol_Error = 6,
    Communications_Subsystem_Failure = 7,
    ConfigurationCustomization_Error = 8,
    Congestion = 9,
    Corrupt_Data = 10,
    CPU_Cycles_Limit_Exceeded = 11,
    DatasetModem_Error = 12,
    Degraded_Signal = 13,
    DTE_DCE_Interface_Error = 14,
    Enclosure_Door_Open = 15,
    Equipment_Malfunction = 16,
    Excessive_Vibration = 17,
    File_Format_Error = 18,
    Fire_Detected = 19,
    Flood_Detected = 20,
    Framing_Error = 21,
    HVAC_Problem = 22,
    Humidity_Unacceptable = 23,
    IO_Device_Error = 24,
    Input_Device_Error = 25,
    LAN_Error = 26,
    Non_Toxic_Leak_Detected = 27,
    Local_Node_Transmission_Error = 28,
    Loss_of_Frame = 29,
    Loss_of_Signal = 30,
    Material_Supply_Exhausted = 31,
    Multiplexer_Problem = 32,
    Out_of_Memory = 33,
    Output_Device_Error = 34,
    Performance_Degraded = 35,
    Power_Problem = 36,
    Pressure_Unacceptable = 37,
    Processor_Problem = 38,
    Pump_Failure = 39,
    Queue_Size_Exceeded = 40,
    Receive_Failure = 41,
    Receiver_Failure = 42,
    Remote_Node_Transmission_Error = 43,
    Resource_at_or_Nearing_Capacity = 44,
    Response_Time_Excessive = 45,
    Retransmission_Rate_Excessive = 46,
    Software_Error = 47,
    Software_Program_Abnormally_Terminated = 48,
    Software_Program_Error = 49,
    Storage_Capacity_Problem = 50,
    Temperature_Unacceptable = 51,
    Threshold_Crossed = 52,
    Timing_Problem = 53,
    Toxic_Leak_Detected = 54,
    Transmit_Failure = 55,
    Transmitter_Failure = 56,
    Underlying_Resource_Unavailable = 57,
    Version_Mismatch = 58,
    Previous_Alert_Cleared = 59,
    Login_Attempts_Failed = 60,
    Software_Virus_Detected = 61,
    Hardware_Security_Breached = 62,
    Denial_of_Service_Detected = 63,
    Security_Credential_Mismatch = 64,
    Unauthorized_Access = 65,
    Alarm_Received = 66,
    Loss_of_Pointer = 67,
    Payload_Mismatch = 68,
    Transmission_Error = 69,
    Excessive_Error_Rate = 70,
    Trace_Problem = 71,
    Element_Unavailable = 72,
    Element_Missing = 73,
    Loss_of_Multi_Frame = 74,
    Broadcast_Channel_Failure = 75,
    Invalid_Message_Received = 76,
    Routing_Failure = 77,
    Backplane_Failure = 78,
    Identifier_Duplication = 79,
    Protection_Path_Failure = 80,
    Sync_Loss_or_Mismatch = 81,
    Terminal_Problem = 82,
    Real_Time_Clock_Failure = 83,
    Antenna_Failure = 84,
    Battery_Charging_Failure = 85,
    Disk_Failure = 86,
    Frequency_Hopping_Failure = 87,
    Loss_of_Redundancy = 88,
    Power_Supply_Failure = 89,
    Signal_Quality_Problem = 90,
    Battery_Discharging = 91,
    Battery_Failure = 92,
    Commercial_Power_Problem = 93,
    Fan_Failure = 94,
    Engine_Failure = 95,
    Sensor_Failure = 96,
    Fuse_Failure = 97,
    Generator_Failure = 98,
    Low_Battery = 99,
    Low_Fuel = 100,
    Low_Water = 101,
    Explosive_Gas = 102,
    High_Winds = 103,
    Ice_Buildup = 104,
    Smoke = 105,
    Memory_Mismatch = 106,
    Out_of_CPU_Cycles = 107,
    Software_Environment_Problem = 108,
    Software_Download_Failure = 109,
    Element_Reinitialized = 110,
    Timeout = 111,
    Logging_Problems = 112,
    Leak_Detected = 113,
    Protection_Mechanism_Failure = 114,
    Protecting_Resource_Failure = 115,
    Database_Inconsistency = 116,
    Authentication_Failure = 117,
    Breach_of_Confidentiality = 118,
    Cable_Tamper = 119,
    Delayed_Information = 120,
    Duplicate_Information = 121,
    Information_Missing = 122,
    Information_Modification = 123,
    Information_Out_of_Sequence = 124,
    Key_Expired = 125,
    Non_Repudiation_Failure = 126,
    Out_of_Hours_Activity = 127,
    Out_of_Service = 128,
    Procedural_Error = 129,
    Unexpected_Information = 130,
};

} // extern "C"

constexpr CMPIVersion CMPIVersion100 = 100;
constexpr CMPIVersion CMPIVersion200 = 200;
constexpr CMPIVersion CMPIVersion210 = 210;

// An array type is its element type with the flag CMPI_ARRAY. With CMPI_chars the text pointer itself stands in
// the place of the CMPIValue pointer.
constexpr CMPIType CMPI_null = 0x0;
constexpr CMPIType CMPI_SIMPLE = 0x2;
constexpr CMPIType CMPI_boolean = 0x2;
constexpr CMPIType CMPI_char16 = 0x3;
constexpr CMPIType CMPI_REAL = 0x8;
constexpr CMPIType CMPI_real32 = 0x8;
constexpr CMPIType CMPI_real64 = 0xc;
constexpr CMPIType CMPI_UINT = 0x80;
constexpr CMPIType CMPI_uint8 = 0x80;
constexpr CMPIType CMPI_uint16 = 0x90;
constexpr CMPIType CMPI_uint32 = 0xa0;
constexpr CMPIType CMPI_uint64 = 0xb0;
constexpr CMPIType CMPI_SINT = 0xc0;
constexpr CMPIType CMPI_sint8 = 0xc0;
constexpr CMPIType CMPI_sint16 = 0xd0;
constexpr CMPIType CMPI_sint32 = 0xe0;
constexpr CMPIType CMPI_sint64 = 0xf0;
constexpr CMPIType CMPI_INTEGER = 0xc0;
constexpr CMPIType CMPI_ENC = 0x1000;
constexpr CMPIType CMPI_instance = 0x1000;
constexpr CMPIType CMPI_ref = 0x1100;
constexpr CMPIType CMPI_args = 0x1200;
constexpr CMPIType CMPI_class = 0x1300;
constexpr CMPIType CMPI_filter = 0x1400;
constexpr CMPIType CMPI_enumeration = 0x1500;
constexpr CMPIType CMPI_string = 0x1600;
constexpr CMPIType CMPI_chars = 0x1700;
constexpr CMPIType CMPI_dateTime = 0x1800;
constexpr CMPIType CMPI_ptr = 0x1900;
constexpr CMPIType CMPI_charsptr = 0x1a00;
constexpr CMPIType CMPI_ARRAY = 0x2000;
constexpr CMPIType CMPI_SIMPLEA = 0x2002;
constexpr CMPIType CMPI_booleanA = 0x2002;
constexpr CMPIType CMPI_char16A = 0x2003;
constexpr CMPIType CMPI_REALA = 0x2008;
constexpr CMPIType CMPI_real32A = 0x2008;
constexpr CMPIType CMPI_real64A = 0x200c;
constexpr CMPIType CMPI_UINTA = 0x2080;
constexpr CMPIType CMPI_uint8A = 0x2080;
constexpr CMPIType CMPI_uint16A = 0x2090;
constexpr CMPIType CMPI_uint32A = 0x20a0;
constexpr CMPIType CMPI_uint64A = 0x20b0;
constexpr CMPIType CMPI_SINTA = 0x20c0;
constexpr CMPIType CMPI_sint8A = 0x20c0;
constexpr CMPIType CMPI_sint16A = 0x20d0;
constexpr CMPIType CMPI_sint32A = 0x20e0;
constexpr CMPIType CMPI_sint64A = 0x20f0;
constexpr CMPIType CMPI_INTEGERA = 0x20c0;
constexpr CMPIType CMPI_ENCA = 0x3000;
constexpr CMPIType CMPI_instanceA = 0x3000;
constexpr CMPIType CMPI_refA = 0x3100;
constexpr CMPIType CMPI_stringA = 0x3600;
constexpr CMPIType CMPI_charsA = 0x3700;
constexpr CMPIType CMPI_dateTimeA = 0x3800;
constexpr CMPIType CMPI_charsptrA = 0x3a00;
constexpr CMPIType CMPI_keyInteger = 0xf0;
constexpr CMPIType CMPI_keyString = 0x1600;
constexpr CMPIType CMPI_keyBoolean = 0x2;
constexpr CMPIType CMPI_keyRef = 0x1100;
constexpr CMPIType CMPI_charString = 0x1600;
constexpr CMPIType CMPI_integerString = 0x16f0;
constexpr CMPIType CMPI_realString = 0x160c;
constexpr CMPIType CMPI_numericString = 0x16fc;
constexpr CMPIType CMPI_booleanString = 0x1602;
constexpr CMPIType CMPI_dateTimeString = 0x1e00;
constexpr CMPIType CMPI_classNameString = 0x1700;
constexpr CMPIType CMPI_nameString = 0x1e00;
constexpr CMPIType CMPI_Byte = 0xc0;
constexpr CMPIType CMPI_Short = 0xd0;
constexpr CMPIType CMPI_Int = 0xe0;
constexpr CMPIType CMPI_Long = 0xf0;
constexpr CMPIType CMPI_Float = 0x8;
constexpr CMPIType CMPI_Double = 0xc;
constexpr CMPIType CMPI_ByteA = 0x20c0;
constexpr CMPIType CMPI_ShortA = 0x20d0;
constexpr CMPIType CMPI_IntA = 0x20e0;
constexpr CMPIType CMPI_LongA = 0x20f0;
constexpr CMPIType CMPI_FloatA = 0x2008;
constexpr CMPIType CMPI_DoubleA = 0x200c;

// The states are bits and combine.
constexpr CMPIValueState CMPI_goodValue = 0x0;
constexpr CMPIValueState CMPI_nullValue = 0x100;
constexpr CMPIValueState CMPI_keyValue = 0x200;
constexpr CMPIValueState CMPI_notFound = 0x400;
constexpr CMPIValueState CMPI_badValue = 0x8000;

constexpr CMPIFlags CMPI_FLAG_LocalOnly = 0x1;
constexpr CMPIFlags CMPI_FLAG_DeepInheritance = 0x2;
constexpr CMPIFlags CMPI_FLAG_IncludeQualifiers = 0x4;
constexpr CMPIFlags CMPI_FLAG_IncludeClassOrigin = 0x8;

// What a broker says it can do.
constexpr unsigned int CMPI_MB_BasicRead = 0x1;
constexpr unsigned int CMPI_MB_BasicWrite = 0x3;
constexpr unsigned int CMPI_MB_InstanceManipulation = 0x7;
constexpr unsigned int CMPI_MB_AssociationTraversal = 0x9;
constexpr unsigned int CMPI_MB_QueryExecution = 0x11;
constexpr unsigned int CMPI_MB_QueryNormalization = 0x31;
constexpr unsigned int CMPI_MB_BasicQualifierSupport = 0x47;
constexpr unsigned int CMPI_MB_Indications = 0x81;
constexpr unsigned int CMPI_MB_OSEncapsulationSupport = 0x100;
constexpr unsigned int CMPI_MB_Supports_MemEnhancements = 0x4000;
constexpr unsigned int CMPI_MB_Supports_Extended_Error = 0x8000;
constexpr unsigned int CMPI_MB_Logging = 0x10000;
constexpr unsigned int CMPI_MB_Tracing = 0x20000;
constexpr unsigned int CMPI_MB_PropertyFiltering = 0x40001;
constexpr unsigned int CMPI_MB_CodepageConversion = 0x80000;
constexpr unsigned int CMPI_MB_Class_0 = 0x1;
constexpr unsigned int CMPI_MB_Class_1 = 0x3;
constexpr unsigned int CMPI_MB_Class_2 = 0x7;
