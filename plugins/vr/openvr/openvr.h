// OpenVR client interfaces, binary compatible with the official IVRSystem_017, IVRCompositor_022 and
// IVRRenderModels_005. Written from the published API description (release 1.0.11): the enums with
// their values, the structs with their fields and official packing, and the interface classes with
// every method in declaration order, since the order of the virtual table is the binary contract with
// the runtime. The inline VR_Init, VR_Shutdown, VRSystem(), VRCompositor() and VRRenderModels() work
// as in the official header: each module
// (shared object) keeps its own table of interface pointers and the init token it last saw.
#pragma once

#include <cstddef>
#include <cstdint>

// Vulkan handles named by some methods; declared only, never defined here.
struct VkInstance_T;
struct VkPhysicalDevice_T;

namespace vr {

#pragma pack(push, 8)

typedef void* glSharedTextureHandle_t;
typedef int32_t glInt_t;
typedef uint32_t glUInt_t;
typedef uint64_t SharedTextureHandle_t;
typedef uint32_t DriverId_t;
typedef uint32_t TrackedDeviceIndex_t;
typedef uint64_t PropertyContainerHandle_t;
typedef uint32_t PropertyTypeTag_t;
typedef uint64_t VROverlayHandle_t;
typedef uint64_t TrackedCameraHandle_t;
typedef uint32_t ScreenshotHandle_t;
typedef uint32_t VRComponentProperties;
typedef int32_t TextureID_t;
typedef uint32_t VRNotificationId;

enum EVREye {
    Eye_Left = 0,
    Eye_Right = 1,
};

enum ETextureType {
    TextureType_DirectX = 0,
    TextureType_OpenGL = 1,
    TextureType_Vulkan = 2,
    TextureType_IOSurface = 3,
    TextureType_DirectX12 = 4,
};

enum EColorSpace {
    ColorSpace_Auto = 0,
    ColorSpace_Gamma = 1,
    ColorSpace_Linear = 2,
};

enum ETrackingResult {
    TrackingResult_Uninitialized = 1,
    TrackingResult_Calibrating_InProgress = 100,
    TrackingResult_Calibrating_OutOfRange = 101,
    TrackingResult_Running_OK = 200,
    TrackingResult_Running_OutOfRange = 201,
};

enum ETrackedDeviceClass {
    TrackedDeviceClass_Invalid = 0,
    TrackedDeviceClass_HMD = 1,
    TrackedDeviceClass_Controller = 2,
    TrackedDeviceClass_GenericTracker = 3,
    TrackedDeviceClass_TrackingReference = 4,
    TrackedDeviceClass_DisplayRedirect = 5,
};

enum ETrackedControllerRole {
    TrackedControllerRole_Invalid = 0,
    TrackedControllerRole_LeftHand = 1,
    TrackedControllerRole_RightHand = 2,
};

enum ETrackingUniverseOrigin {
    TrackingUniverseSeated = 0,
    TrackingUniverseStanding = 1,
    TrackingUniverseRawAndUncalibrated = 2,
};

enum ETrackedDeviceProperty {
    Prop_Invalid = 0,
    Prop_TrackingSystemName_String = 1000,
    Prop_ModelNumber_String = 1001,
    Prop_SerialNumber_String = 1002,
    Prop_RenderModelName_String = 1003,
    Prop_WillDriftInYaw_Bool = 1004,
    Prop_ManufacturerName_String = 1005,
    Prop_TrackingFirmwareVersion_String = 1006,
    Prop_HardwareRevision_String = 1007,
    Prop_AllWirelessDongleDescriptions_String = 1008,
    Prop_ConnectedWirelessDongle_String = 1009,
    Prop_DeviceIsWireless_Bool = 1010,
    Prop_DeviceIsCharging_Bool = 1011,
    Prop_DeviceBatteryPercentage_Float = 1012,
    Prop_StatusDisplayTransform_Matrix34 = 1013,
    Prop_Firmware_UpdateAvailable_Bool = 1014,
    Prop_Firmware_ManualUpdate_Bool = 1015,
    Prop_Firmware_ManualUpdateURL_String = 1016,
    Prop_HardwareRevision_Uint64 = 1017,
    Prop_FirmwareVersion_Uint64 = 1018,
    Prop_FPGAVersion_Uint64 = 1019,
    Prop_VRCVersion_Uint64 = 1020,
    Prop_RadioVersion_Uint64 = 1021,
    Prop_DongleVersion_Uint64 = 1022,
    Prop_BlockServerShutdown_Bool = 1023,
    Prop_CanUnifyCoordinateSystemWithHmd_Bool = 1024,
    Prop_ContainsProximitySensor_Bool = 1025,
    Prop_DeviceProvidesBatteryStatus_Bool = 1026,
    Prop_DeviceCanPowerOff_Bool = 1027,
    Prop_Firmware_ProgrammingTarget_String = 1028,
    Prop_DeviceClass_Int32 = 1029,
    Prop_HasCamera_Bool = 1030,
    Prop_DriverVersion_String = 1031,
    Prop_Firmware_ForceUpdateRequired_Bool = 1032,
    Prop_ViveSystemButtonFixRequired_Bool = 1033,
    Prop_ParentDriver_Uint64 = 1034,
    Prop_ResourceRoot_String = 1035,
    Prop_RegisteredDeviceType_String = 1036,
    Prop_InputProfileName_String = 1037,
    Prop_ReportsTimeSinceVSync_Bool = 2000,
    Prop_SecondsFromVsyncToPhotons_Float = 2001,
    Prop_DisplayFrequency_Float = 2002,
    Prop_UserIpdMeters_Float = 2003,
    Prop_CurrentUniverseId_Uint64 = 2004,
    Prop_PreviousUniverseId_Uint64 = 2005,
    Prop_DisplayFirmwareVersion_Uint64 = 2006,
    Prop_IsOnDesktop_Bool = 2007,
    Prop_DisplayMCType_Int32 = 2008,
    Prop_DisplayMCOffset_Float = 2009,
    Prop_DisplayMCScale_Float = 2010,
    Prop_EdidVendorID_Int32 = 2011,
    Prop_DisplayMCImageLeft_String = 2012,
    Prop_DisplayMCImageRight_String = 2013,
    Prop_DisplayGCBlackClamp_Float = 2014,
    Prop_EdidProductID_Int32 = 2015,
    Prop_CameraToHeadTransform_Matrix34 = 2016,
    Prop_DisplayGCType_Int32 = 2017,
    Prop_DisplayGCOffset_Float = 2018,
    Prop_DisplayGCScale_Float = 2019,
    Prop_DisplayGCPrescale_Float = 2020,
    Prop_DisplayGCImage_String = 2021,
    Prop_LensCenterLeftU_Float = 2022,
    Prop_LensCenterLeftV_Float = 2023,
    Prop_LensCenterRightU_Float = 2024,
    Prop_LensCenterRightV_Float = 2025,
    Prop_UserHeadToEyeDepthMeters_Float = 2026,
    Prop_CameraFirmwareVersion_Uint64 = 2027,
    Prop_CameraFirmwareDescription_String = 2028,
    Prop_DisplayFPGAVersion_Uint64 = 2029,
    Prop_DisplayBootloaderVersion_Uint64 = 2030,
    Prop_DisplayHardwareVersion_Uint64 = 2031,
    Prop_AudioFirmwareVersion_Uint64 = 2032,
    Prop_CameraCompatibilityMode_Int32 = 2033,
    Prop_ScreenshotHorizontalFieldOfViewDegrees_Float = 2034,
    Prop_ScreenshotVerticalFieldOfViewDegrees_Float = 2035,
    Prop_DisplaySuppressed_Bool = 2036,
    Prop_DisplayAllowNightMode_Bool = 2037,
    Prop_DisplayMCImageWidth_Int32 = 2038,
    Prop_DisplayMCImageHeight_Int32 = 2039,
    Prop_DisplayMCImageNumChannels_Int32 = 2040,
    Prop_DisplayMCImageData_Binary = 2041,
    Prop_SecondsFromPhotonsToVblank_Float = 2042,
    Prop_DriverDirectModeSendsVsyncEvents_Bool = 2043,
    Prop_DisplayDebugMode_Bool = 2044,
    Prop_GraphicsAdapterLuid_Uint64 = 2045,
    Prop_DriverProvidedChaperonePath_String = 2048,
    Prop_ExpectedTrackingReferenceCount_Int32 = 2049,
    Prop_ExpectedControllerCount_Int32 = 2050,
    Prop_NamedIconPathControllerLeftDeviceOff_String = 2051,
    Prop_NamedIconPathControllerRightDeviceOff_String = 2052,
    Prop_NamedIconPathTrackingReferenceDeviceOff_String = 2053,
    Prop_DoNotApplyPrediction_Bool = 2054,
    Prop_AttachedDeviceId_String = 3000,
    Prop_SupportedButtons_Uint64 = 3001,
    Prop_Axis0Type_Int32 = 3002,
    Prop_Axis1Type_Int32 = 3003,
    Prop_Axis2Type_Int32 = 3004,
    Prop_Axis3Type_Int32 = 3005,
    Prop_Axis4Type_Int32 = 3006,
    Prop_ControllerRoleHint_Int32 = 3007,
    Prop_FieldOfViewLeftDegrees_Float = 4000,
    Prop_FieldOfViewRightDegrees_Float = 4001,
    Prop_FieldOfViewTopDegrees_Float = 4002,
    Prop_FieldOfViewBottomDegrees_Float = 4003,
    Prop_TrackingRangeMinimumMeters_Float = 4004,
    Prop_TrackingRangeMaximumMeters_Float = 4005,
    Prop_ModeLabel_String = 4006,
    Prop_IconPathName_String = 5000,
    Prop_NamedIconPathDeviceOff_String = 5001,
    Prop_NamedIconPathDeviceSearching_String = 5002,
    Prop_NamedIconPathDeviceSearchingAlert_String = 5003,
    Prop_NamedIconPathDeviceReady_String = 5004,
    Prop_NamedIconPathDeviceReadyAlert_String = 5005,
    Prop_NamedIconPathDeviceNotReady_String = 5006,
    Prop_NamedIconPathDeviceStandby_String = 5007,
    Prop_NamedIconPathDeviceAlertLow_String = 5008,
    Prop_DisplayHiddenArea_Binary_Start = 5100,
    Prop_DisplayHiddenArea_Binary_End = 5150,
    Prop_ParentContainer = 5151,
    Prop_UserConfigPath_String = 6000,
    Prop_InstallPath_String = 6001,
    Prop_HasDisplayComponent_Bool = 6002,
    Prop_HasControllerComponent_Bool = 6003,
    Prop_HasCameraComponent_Bool = 6004,
    Prop_HasDriverDirectModeComponent_Bool = 6005,
    Prop_HasVirtualDisplayComponent_Bool = 6006,
    Prop_VendorSpecific_Reserved_Start = 10000,
    Prop_VendorSpecific_Reserved_End = 10999,
};

enum ETrackedPropertyError {
    TrackedProp_Success = 0,
    TrackedProp_WrongDataType = 1,
    TrackedProp_WrongDeviceClass = 2,
    TrackedProp_BufferTooSmall = 3,
    TrackedProp_UnknownProperty = 4,
    TrackedProp_InvalidDevice = 5,
    TrackedProp_CouldNotContactServer = 6,
    TrackedProp_ValueNotProvidedByDevice = 7,
    TrackedProp_StringExceedsMaximumLength = 8,
    TrackedProp_NotYetAvailable = 9,
    TrackedProp_PermissionDenied = 10,
    TrackedProp_InvalidOperation = 11,
    TrackedProp_CannotWriteToWildcards = 12,
};

enum EVRSubmitFlags {
    Submit_Default = 0,
    Submit_LensDistortionAlreadyApplied = 1,
    Submit_GlRenderBuffer = 2,
    Submit_Reserved = 4,
    Submit_TextureWithPose = 8,
};

enum EVRState {
    VRState_Undefined = -1,
    VRState_Off = 0,
    VRState_Searching = 1,
    VRState_Searching_Alert = 2,
    VRState_Ready = 3,
    VRState_Ready_Alert = 4,
    VRState_NotReady = 5,
    VRState_Standby = 6,
    VRState_Ready_Alert_Low = 7,
};

enum EVREventType {
    VREvent_None = 0,
    VREvent_TrackedDeviceActivated = 100,
    VREvent_TrackedDeviceDeactivated = 101,
    VREvent_TrackedDeviceUpdated = 102,
    VREvent_TrackedDeviceUserInteractionStarted = 103,
    VREvent_TrackedDeviceUserInteractionEnded = 104,
    VREvent_IpdChanged = 105,
    VREvent_EnterStandbyMode = 106,
    VREvent_LeaveStandbyMode = 107,
    VREvent_TrackedDeviceRoleChanged = 108,
    VREvent_WatchdogWakeUpRequested = 109,
    VREvent_LensDistortionChanged = 110,
    VREvent_PropertyChanged = 111,
    VREvent_WirelessDisconnect = 112,
    VREvent_WirelessReconnect = 113,
    VREvent_ButtonPress = 200,
    VREvent_ButtonUnpress = 201,
    VREvent_ButtonTouch = 202,
    VREvent_ButtonUntouch = 203,
    VREvent_DualAnalog_Press = 250,
    VREvent_DualAnalog_Unpress = 251,
    VREvent_DualAnalog_Touch = 252,
    VREvent_DualAnalog_Untouch = 253,
    VREvent_DualAnalog_Move = 254,
    VREvent_DualAnalog_ModeSwitch1 = 255,
    VREvent_DualAnalog_ModeSwitch2 = 256,
    VREvent_DualAnalog_Cancel = 257,
    VREvent_MouseMove = 300,
    VREvent_MouseButtonDown = 301,
    VREvent_MouseButtonUp = 302,
    VREvent_FocusEnter = 303,
    VREvent_FocusLeave = 304,
    VREvent_Scroll = 305,
    VREvent_TouchPadMove = 306,
    VREvent_OverlayFocusChanged = 307,
    VREvent_InputFocusCaptured = 400,
    VREvent_InputFocusReleased = 401,
    VREvent_SceneFocusLost = 402,
    VREvent_SceneFocusGained = 403,
    VREvent_SceneApplicationChanged = 404,
    VREvent_SceneFocusChanged = 405,
    VREvent_InputFocusChanged = 406,
    VREvent_SceneApplicationSecondaryRenderingStarted = 407,
    VREvent_HideRenderModels = 410,
    VREvent_ShowRenderModels = 411,
    VREvent_ConsoleOpened = 420,
    VREvent_ConsoleClosed = 421,
    VREvent_OverlayShown = 500,
    VREvent_OverlayHidden = 501,
    VREvent_DashboardActivated = 502,
    VREvent_DashboardDeactivated = 503,
    VREvent_DashboardThumbSelected = 504,
    VREvent_DashboardRequested = 505,
    VREvent_ResetDashboard = 506,
    VREvent_RenderToast = 507,
    VREvent_ImageLoaded = 508,
    VREvent_ShowKeyboard = 509,
    VREvent_HideKeyboard = 510,
    VREvent_OverlayGamepadFocusGained = 511,
    VREvent_OverlayGamepadFocusLost = 512,
    VREvent_OverlaySharedTextureChanged = 513,
    VREvent_DashboardGuideButtonDown = 514,
    VREvent_DashboardGuideButtonUp = 515,
    VREvent_ScreenshotTriggered = 516,
    VREvent_ImageFailed = 517,
    VREvent_DashboardOverlayCreated = 518,
    VREvent_RequestScreenshot = 520,
    VREvent_ScreenshotTaken = 521,
    VREvent_ScreenshotFailed = 522,
    VREvent_SubmitScreenshotToDashboard = 523,
    VREvent_ScreenshotProgressToDashboard = 524,
    VREvent_PrimaryDashboardDeviceChanged = 525,
    VREvent_Notification_Shown = 600,
    VREvent_Notification_Hidden = 601,
    VREvent_Notification_BeginInteraction = 602,
    VREvent_Notification_Destroyed = 603,
    VREvent_Quit = 700,
    VREvent_ProcessQuit = 701,
    VREvent_QuitAborted_UserPrompt = 702,
    VREvent_QuitAcknowledged = 703,
    VREvent_DriverRequestedQuit = 704,
    VREvent_ChaperoneDataHasChanged = 800,
    VREvent_ChaperoneUniverseHasChanged = 801,
    VREvent_ChaperoneTempDataHasChanged = 802,
    VREvent_ChaperoneSettingsHaveChanged = 803,
    VREvent_SeatedZeroPoseReset = 804,
    VREvent_AudioSettingsHaveChanged = 820,
    VREvent_BackgroundSettingHasChanged = 850,
    VREvent_CameraSettingsHaveChanged = 851,
    VREvent_ReprojectionSettingHasChanged = 852,
    VREvent_ModelSkinSettingsHaveChanged = 853,
    VREvent_EnvironmentSettingsHaveChanged = 854,
    VREvent_PowerSettingsHaveChanged = 855,
    VREvent_EnableHomeAppSettingsHaveChanged = 856,
    VREvent_SteamVRSectionSettingChanged = 857,
    VREvent_LighthouseSectionSettingChanged = 858,
    VREvent_NullSectionSettingChanged = 859,
    VREvent_UserInterfaceSectionSettingChanged = 860,
    VREvent_NotificationsSectionSettingChanged = 861,
    VREvent_KeyboardSectionSettingChanged = 862,
    VREvent_PerfSectionSettingChanged = 863,
    VREvent_DashboardSectionSettingChanged = 864,
    VREvent_StatusUpdate = 900,
    VREvent_MCImageUpdated = 1000,
    VREvent_FirmwareUpdateStarted = 1100,
    VREvent_FirmwareUpdateFinished = 1101,
    VREvent_KeyboardClosed = 1200,
    VREvent_KeyboardCharInput = 1201,
    VREvent_KeyboardDone = 1202,
    VREvent_ApplicationTransitionStarted = 1300,
    VREvent_ApplicationTransitionAborted = 1301,
    VREvent_ApplicationTransitionNewAppStarted = 1302,
    VREvent_ApplicationListUpdated = 1303,
    VREvent_ApplicationMimeTypeLoad = 1304,
    VREvent_ApplicationTransitionNewAppLaunchComplete = 1305,
    VREvent_ProcessConnected = 1306,
    VREvent_ProcessDisconnected = 1307,
    VREvent_Compositor_MirrorWindowShown = 1400,
    VREvent_Compositor_MirrorWindowHidden = 1401,
    VREvent_Compositor_ChaperoneBoundsShown = 1410,
    VREvent_Compositor_ChaperoneBoundsHidden = 1411,
    VREvent_TrackedCamera_StartVideoStream = 1500,
    VREvent_TrackedCamera_StopVideoStream = 1501,
    VREvent_TrackedCamera_PauseVideoStream = 1502,
    VREvent_TrackedCamera_ResumeVideoStream = 1503,
    VREvent_TrackedCamera_EditingSurface = 1550,
    VREvent_PerformanceTest_EnableCapture = 1600,
    VREvent_PerformanceTest_DisableCapture = 1601,
    VREvent_PerformanceTest_FidelityLevel = 1602,
    VREvent_MessageOverlay_Closed = 1650,
    VREvent_MessageOverlayCloseRequested = 1651,
    VREvent_VendorSpecific_Reserved_Start = 10000,
    VREvent_VendorSpecific_Reserved_End = 19999,
};

enum EDeviceActivityLevel {
    k_EDeviceActivityLevel_Unknown = -1,
    k_EDeviceActivityLevel_Idle = 0,
    k_EDeviceActivityLevel_UserInteraction = 1,
    k_EDeviceActivityLevel_UserInteraction_Timeout = 2,
    k_EDeviceActivityLevel_Standby = 3,
};

enum EVRButtonId {
    k_EButton_System = 0,
    k_EButton_ApplicationMenu = 1,
    k_EButton_Grip = 2,
    k_EButton_DPad_Left = 3,
    k_EButton_DPad_Up = 4,
    k_EButton_DPad_Right = 5,
    k_EButton_DPad_Down = 6,
    k_EButton_A = 7,
    k_EButton_ProximitySensor = 31,
    k_EButton_Axis0 = 32,
    k_EButton_Axis1 = 33,
    k_EButton_Axis2 = 34,
    k_EButton_Axis3 = 35,
    k_EButton_Axis4 = 36,
    k_EButton_SteamVR_Touchpad = 32,
    k_EButton_SteamVR_Trigger = 33,
    k_EButton_Dashboard_Back = 2,
    k_EButton_Max = 64,
};

enum EVRMouseButton {
    VRMouseButton_Left = 1,
    VRMouseButton_Right = 2,
    VRMouseButton_Middle = 4,
};

enum EDualAnalogWhich {
    k_EDualAnalog_Left = 0,
    k_EDualAnalog_Right = 1,
};

enum EHiddenAreaMeshType {
    k_eHiddenAreaMesh_Standard = 0,
    k_eHiddenAreaMesh_Inverse = 1,
    k_eHiddenAreaMesh_LineLoop = 2,
    k_eHiddenAreaMesh_Max = 3,
};

enum EVRControllerAxisType {
    k_eControllerAxis_None = 0,
    k_eControllerAxis_TrackPad = 1,
    k_eControllerAxis_Joystick = 2,
    k_eControllerAxis_Trigger = 3,
};

enum EVRControllerEventOutputType {
    ControllerEventOutput_OSEvents = 0,
    ControllerEventOutput_VREvents = 1,
};

enum ECollisionBoundsStyle {
    COLLISION_BOUNDS_STYLE_BEGINNER = 0,
    COLLISION_BOUNDS_STYLE_INTERMEDIATE = 1,
    COLLISION_BOUNDS_STYLE_SQUARES = 2,
    COLLISION_BOUNDS_STYLE_ADVANCED = 3,
    COLLISION_BOUNDS_STYLE_NONE = 4,
    COLLISION_BOUNDS_STYLE_COUNT = 5,
};

enum EVROverlayError {
    VROverlayError_None = 0,
    VROverlayError_UnknownOverlay = 10,
    VROverlayError_InvalidHandle = 11,
    VROverlayError_PermissionDenied = 12,
    VROverlayError_OverlayLimitExceeded = 13,
    VROverlayError_WrongVisibilityType = 14,
    VROverlayError_KeyTooLong = 15,
    VROverlayError_NameTooLong = 16,
    VROverlayError_KeyInUse = 17,
    VROverlayError_WrongTransformType = 18,
    VROverlayError_InvalidTrackedDevice = 19,
    VROverlayError_InvalidParameter = 20,
    VROverlayError_ThumbnailCantBeDestroyed = 21,
    VROverlayError_ArrayTooSmall = 22,
    VROverlayError_RequestFailed = 23,
    VROverlayError_InvalidTexture = 24,
    VROverlayError_UnableToLoadFile = 25,
    VROverlayError_KeyboardAlreadyInUse = 26,
    VROverlayError_NoNeighbor = 27,
    VROverlayError_TooManyMaskPrimitives = 29,
    VROverlayError_BadMaskPrimitive = 30,
};

enum EVRApplicationType {
    VRApplication_Other = 0,
    VRApplication_Scene = 1,
    VRApplication_Overlay = 2,
    VRApplication_Background = 3,
    VRApplication_Utility = 4,
    VRApplication_VRMonitor = 5,
    VRApplication_SteamWatchdog = 6,
    VRApplication_Bootstrapper = 7,
    VRApplication_Max = 8,
};

enum EVRFirmwareError {
    VRFirmwareError_None = 0,
    VRFirmwareError_Success = 1,
    VRFirmwareError_Fail = 2,
};

enum EVRNotificationError {
    VRNotificationError_OK = 0,
    VRNotificationError_InvalidNotificationId = 100,
    VRNotificationError_NotificationQueueFull = 101,
    VRNotificationError_InvalidOverlayHandle = 102,
    VRNotificationError_SystemWithUserValueAlreadyExists = 103,
};

enum EVRInitError {
    VRInitError_None = 0,
    VRInitError_Unknown = 1,
    VRInitError_Init_InstallationNotFound = 100,
    VRInitError_Init_InstallationCorrupt = 101,
    VRInitError_Init_VRClientDLLNotFound = 102,
    VRInitError_Init_FileNotFound = 103,
    VRInitError_Init_FactoryNotFound = 104,
    VRInitError_Init_InterfaceNotFound = 105,
    VRInitError_Init_InvalidInterface = 106,
    VRInitError_Init_UserConfigDirectoryInvalid = 107,
    VRInitError_Init_HmdNotFound = 108,
    VRInitError_Init_NotInitialized = 109,
    VRInitError_Init_PathRegistryNotFound = 110,
    VRInitError_Init_NoConfigPath = 111,
    VRInitError_Init_NoLogPath = 112,
    VRInitError_Init_PathRegistryNotWritable = 113,
    VRInitError_Init_AppInfoInitFailed = 114,
    VRInitError_Init_Retry = 115,
    VRInitError_Init_InitCanceledByUser = 116,
    VRInitError_Init_AnotherAppLaunching = 117,
    VRInitError_Init_SettingsInitFailed = 118,
    VRInitError_Init_ShuttingDown = 119,
    VRInitError_Init_TooManyObjects = 120,
    VRInitError_Init_NoServerForBackgroundApp = 121,
    VRInitError_Init_NotSupportedWithCompositor = 122,
    VRInitError_Init_NotAvailableToUtilityApps = 123,
    VRInitError_Init_Internal = 124,
    VRInitError_Init_HmdDriverIdIsNone = 125,
    VRInitError_Init_HmdNotFoundPresenceFailed = 126,
    VRInitError_Init_VRMonitorNotFound = 127,
    VRInitError_Init_VRMonitorStartupFailed = 128,
    VRInitError_Init_LowPowerWatchdogNotSupported = 129,
    VRInitError_Init_InvalidApplicationType = 130,
    VRInitError_Init_NotAvailableToWatchdogApps = 131,
    VRInitError_Init_WatchdogDisabledInSettings = 132,
    VRInitError_Init_VRDashboardNotFound = 133,
    VRInitError_Init_VRDashboardStartupFailed = 134,
    VRInitError_Init_VRHomeNotFound = 135,
    VRInitError_Init_VRHomeStartupFailed = 136,
    VRInitError_Init_RebootingBusy = 137,
    VRInitError_Init_FirmwareUpdateBusy = 138,
    VRInitError_Init_FirmwareRecoveryBusy = 139,
    VRInitError_Init_USBServiceBusy = 140,
    VRInitError_Driver_Failed = 200,
    VRInitError_Driver_Unknown = 201,
    VRInitError_Driver_HmdUnknown = 202,
    VRInitError_Driver_NotLoaded = 203,
    VRInitError_Driver_RuntimeOutOfDate = 204,
    VRInitError_Driver_HmdInUse = 205,
    VRInitError_Driver_NotCalibrated = 206,
    VRInitError_Driver_CalibrationInvalid = 207,
    VRInitError_Driver_HmdDisplayNotFound = 208,
    VRInitError_Driver_TrackedDeviceInterfaceUnknown = 209,
    VRInitError_Driver_HmdDriverIdOutOfBounds = 211,
    VRInitError_Driver_HmdDisplayMirrored = 212,
    VRInitError_IPC_ServerInitFailed = 300,
    VRInitError_IPC_ConnectFailed = 301,
    VRInitError_IPC_SharedStateInitFailed = 302,
    VRInitError_IPC_CompositorInitFailed = 303,
    VRInitError_IPC_MutexInitFailed = 304,
    VRInitError_IPC_Failed = 305,
    VRInitError_IPC_CompositorConnectFailed = 306,
    VRInitError_IPC_CompositorInvalidConnectResponse = 307,
    VRInitError_IPC_ConnectFailedAfterMultipleAttempts = 308,
    VRInitError_Compositor_Failed = 400,
    VRInitError_Compositor_D3D11HardwareRequired = 401,
    VRInitError_Compositor_FirmwareRequiresUpdate = 402,
    VRInitError_Compositor_OverlayInitFailed = 403,
    VRInitError_Compositor_ScreenshotsInitFailed = 404,
    VRInitError_Compositor_UnableToCreateDevice = 405,
    VRInitError_VendorSpecific_UnableToConnectToOculusRuntime = 1000,
    VRInitError_VendorSpecific_WindowsNotInDevMode = 1001,
    VRInitError_VendorSpecific_HmdFound_CantOpenDevice = 1101,
    VRInitError_VendorSpecific_HmdFound_UnableToRequestConfigStart = 1102,
    VRInitError_VendorSpecific_HmdFound_NoStoredConfig = 1103,
    VRInitError_VendorSpecific_HmdFound_ConfigTooBig = 1104,
    VRInitError_VendorSpecific_HmdFound_ConfigTooSmall = 1105,
    VRInitError_VendorSpecific_HmdFound_UnableToInitZLib = 1106,
    VRInitError_VendorSpecific_HmdFound_CantReadFirmwareVersion = 1107,
    VRInitError_VendorSpecific_HmdFound_UnableToSendUserDataStart = 1108,
    VRInitError_VendorSpecific_HmdFound_UnableToGetUserDataStart = 1109,
    VRInitError_VendorSpecific_HmdFound_UnableToGetUserDataNext = 1110,
    VRInitError_VendorSpecific_HmdFound_UserDataAddressRange = 1111,
    VRInitError_VendorSpecific_HmdFound_UserDataError = 1112,
    VRInitError_VendorSpecific_HmdFound_ConfigFailedSanityCheck = 1113,
    VRInitError_Steam_SteamInstallationNotFound = 2000,
};

enum EVRScreenshotType {
    VRScreenshotType_None = 0,
    VRScreenshotType_Mono = 1,
    VRScreenshotType_Stereo = 2,
    VRScreenshotType_Cubemap = 3,
    VRScreenshotType_MonoPanorama = 4,
    VRScreenshotType_StereoPanorama = 5,
};

enum EVRScreenshotPropertyFilenames {
    VRScreenshotPropertyFilenames_Preview = 0,
    VRScreenshotPropertyFilenames_VR = 1,
};

enum EVRTrackedCameraError {
    VRTrackedCameraError_None = 0,
    VRTrackedCameraError_OperationFailed = 100,
    VRTrackedCameraError_InvalidHandle = 101,
    VRTrackedCameraError_InvalidFrameHeaderVersion = 102,
    VRTrackedCameraError_OutOfHandles = 103,
    VRTrackedCameraError_IPCFailure = 104,
    VRTrackedCameraError_NotSupportedForThisDevice = 105,
    VRTrackedCameraError_SharedMemoryFailure = 106,
    VRTrackedCameraError_FrameBufferingFailure = 107,
    VRTrackedCameraError_StreamSetupFailure = 108,
    VRTrackedCameraError_InvalidGLTextureId = 109,
    VRTrackedCameraError_InvalidSharedTextureHandle = 110,
    VRTrackedCameraError_FailedToGetGLTextureId = 111,
    VRTrackedCameraError_SharedTextureFailure = 112,
    VRTrackedCameraError_NoFrameAvailable = 113,
    VRTrackedCameraError_InvalidArgument = 114,
    VRTrackedCameraError_InvalidFrameBufferSize = 115,
};

enum EVRTrackedCameraFrameType {
    VRTrackedCameraFrameType_Distorted = 0,
    VRTrackedCameraFrameType_Undistorted = 1,
    VRTrackedCameraFrameType_MaximumUndistorted = 2,
    MAX_CAMERA_FRAME_TYPES = 3,
};

enum EVRApplicationError {
    VRApplicationError_None = 0,
    VRApplicationError_AppKeyAlreadyExists = 100,
    VRApplicationError_NoManifest = 101,
    VRApplicationError_NoApplication = 102,
    VRApplicationError_InvalidIndex = 103,
    VRApplicationError_UnknownApplication = 104,
    VRApplicationError_IPCFailed = 105,
    VRApplicationError_ApplicationAlreadyRunning = 106,
    VRApplicationError_InvalidManifest = 107,
    VRApplicationError_InvalidApplication = 108,
    VRApplicationError_LaunchFailed = 109,
    VRApplicationError_ApplicationAlreadyStarting = 110,
    VRApplicationError_LaunchInProgress = 111,
    VRApplicationError_OldApplicationQuitting = 112,
    VRApplicationError_TransitionAborted = 113,
    VRApplicationError_IsTemplate = 114,
    VRApplicationError_SteamVRIsExiting = 115,
    VRApplicationError_BufferTooSmall = 200,
    VRApplicationError_PropertyNotSet = 201,
    VRApplicationError_UnknownProperty = 202,
    VRApplicationError_InvalidParameter = 203,
};

enum EVRApplicationProperty {
    VRApplicationProperty_Name_String = 0,
    VRApplicationProperty_LaunchType_String = 11,
    VRApplicationProperty_WorkingDirectory_String = 12,
    VRApplicationProperty_BinaryPath_String = 13,
    VRApplicationProperty_Arguments_String = 14,
    VRApplicationProperty_URL_String = 15,
    VRApplicationProperty_Description_String = 50,
    VRApplicationProperty_NewsURL_String = 51,
    VRApplicationProperty_ImagePath_String = 52,
    VRApplicationProperty_Source_String = 53,
    VRApplicationProperty_ActionManifestPath_String = 54,
    VRApplicationProperty_ActionBindingPath_String = 55,
    VRApplicationProperty_IsDashboardOverlay_Bool = 60,
    VRApplicationProperty_IsTemplate_Bool = 61,
    VRApplicationProperty_IsInstanced_Bool = 62,
    VRApplicationProperty_IsInternal_Bool = 63,
    VRApplicationProperty_WantsCompositorPauseInStandby_Bool = 64,
    VRApplicationProperty_LastLaunchTime_Uint64 = 70,
};

enum EVRApplicationTransitionState {
    VRApplicationTransition_None = 0,
    VRApplicationTransition_OldAppQuitSent = 10,
    VRApplicationTransition_WaitingForExternalLaunch = 11,
    VRApplicationTransition_NewAppLaunched = 20,
};

enum ChaperoneCalibrationState {
    ChaperoneCalibrationState_OK = 1,
    ChaperoneCalibrationState_Warning = 100,
    ChaperoneCalibrationState_Warning_BaseStationMayHaveMoved = 101,
    ChaperoneCalibrationState_Warning_BaseStationRemoved = 102,
    ChaperoneCalibrationState_Warning_SeatedBoundsInvalid = 103,
    ChaperoneCalibrationState_Error = 200,
    ChaperoneCalibrationState_Error_BaseStationUninitialized = 201,
    ChaperoneCalibrationState_Error_BaseStationConflict = 202,
    ChaperoneCalibrationState_Error_PlayAreaInvalid = 203,
    ChaperoneCalibrationState_Error_CollisionBoundsInvalid = 204,
};

enum EChaperoneConfigFile {
    EChaperoneConfigFile_Live = 1,
    EChaperoneConfigFile_Temp = 2,
};

enum EChaperoneImportFlags {
    EChaperoneImport_BoundsOnly = 1,
};

enum EVRCompositorError {
    VRCompositorError_None = 0,
    VRCompositorError_RequestFailed = 1,
    VRCompositorError_IncompatibleVersion = 100,
    VRCompositorError_DoNotHaveFocus = 101,
    VRCompositorError_InvalidTexture = 102,
    VRCompositorError_IsNotSceneApplication = 103,
    VRCompositorError_TextureIsOnWrongDevice = 104,
    VRCompositorError_TextureUsesUnsupportedFormat = 105,
    VRCompositorError_SharedTexturesNotSupported = 106,
    VRCompositorError_IndexOutOfRange = 107,
    VRCompositorError_AlreadySubmitted = 108,
    VRCompositorError_InvalidBounds = 109,
};

enum EVRCompositorTimingMode {
    VRCompositorTimingMode_Implicit = 0,
    VRCompositorTimingMode_Explicit_RuntimePerformsPostPresentHandoff = 1,
    VRCompositorTimingMode_Explicit_ApplicationPerformsPostPresentHandoff = 2,
};

enum VROverlayInputMethod {
    VROverlayInputMethod_None = 0,
    VROverlayInputMethod_Mouse = 1,
    VROverlayInputMethod_DualAnalog = 2,
};

enum VROverlayTransformType {
    VROverlayTransform_Absolute = 0,
    VROverlayTransform_TrackedDeviceRelative = 1,
    VROverlayTransform_SystemOverlay = 2,
    VROverlayTransform_TrackedComponent = 3,
};

enum VROverlayFlags {
    VROverlayFlags_None = 0,
    VROverlayFlags_Curved = 1,
    VROverlayFlags_RGSS4X = 2,
    VROverlayFlags_NoDashboardTab = 3,
    VROverlayFlags_AcceptsGamepadEvents = 4,
    VROverlayFlags_ShowGamepadFocus = 5,
    VROverlayFlags_SendVRScrollEvents = 6,
    VROverlayFlags_SendVRTouchpadEvents = 7,
    VROverlayFlags_ShowTouchPadScrollWheel = 8,
    VROverlayFlags_TransferOwnershipToInternalProcess = 9,
    VROverlayFlags_SideBySide_Parallel = 10,
    VROverlayFlags_SideBySide_Crossed = 11,
    VROverlayFlags_Panorama = 12,
    VROverlayFlags_StereoPanorama = 13,
    VROverlayFlags_SortWithNonSceneOverlays = 14,
    VROverlayFlags_VisibleInDashboard = 15,
};

enum VRMessageOverlayResponse {
    VRMessageOverlayResponse_ButtonPress_0 = 0,
    VRMessageOverlayResponse_ButtonPress_1 = 1,
    VRMessageOverlayResponse_ButtonPress_2 = 2,
    VRMessageOverlayResponse_ButtonPress_3 = 3,
    VRMessageOverlayResponse_CouldntFindSystemOverlay = 4,
    VRMessageOverlayResponse_CouldntFindOrCreateClientOverlay = 5,
    VRMessageOverlayResponse_ApplicationQuit = 6,
};

enum EGamepadTextInputMode {
    k_EGamepadTextInputModeNormal = 0,
    k_EGamepadTextInputModePassword = 1,
    k_EGamepadTextInputModeSubmit = 2,
};

enum EGamepadTextInputLineMode {
    k_EGamepadTextInputLineModeSingleLine = 0,
    k_EGamepadTextInputLineModeMultipleLines = 1,
};

enum EOverlayDirection {
    OverlayDirection_Up = 0,
    OverlayDirection_Down = 1,
    OverlayDirection_Left = 2,
    OverlayDirection_Right = 3,
    OverlayDirection_Count = 4,
};

enum EVROverlayIntersectionMaskPrimitiveType {
    OverlayIntersectionPrimitiveType_Rectangle = 0,
    OverlayIntersectionPrimitiveType_Circle = 1,
};

enum EVRRenderModelError {
    VRRenderModelError_None = 0,
    VRRenderModelError_Loading = 100,
    VRRenderModelError_NotSupported = 200,
    VRRenderModelError_InvalidArg = 300,
    VRRenderModelError_InvalidModel = 301,
    VRRenderModelError_NoShapes = 302,
    VRRenderModelError_MultipleShapes = 303,
    VRRenderModelError_TooManyVertices = 304,
    VRRenderModelError_MultipleTextures = 305,
    VRRenderModelError_BufferTooSmall = 306,
    VRRenderModelError_NotEnoughNormals = 307,
    VRRenderModelError_NotEnoughTexCoords = 308,
    VRRenderModelError_InvalidTexture = 400,
};

enum EVRComponentProperty {
    VRComponentProperty_IsStatic = 1,
    VRComponentProperty_IsVisible = 2,
    VRComponentProperty_IsTouched = 4,
    VRComponentProperty_IsPressed = 8,
    VRComponentProperty_IsScrolled = 16,
};

enum EVRNotificationType {
    EVRNotificationType_Transient = 0,
    EVRNotificationType_Persistent = 1,
    EVRNotificationType_Transient_SystemWithUserValue = 2,
};

enum EVRNotificationStyle {
    EVRNotificationStyle_None = 0,
    EVRNotificationStyle_Application = 100,
    EVRNotificationStyle_Contact_Disabled = 200,
    EVRNotificationStyle_Contact_Enabled = 201,
    EVRNotificationStyle_Contact_Active = 202,
};

enum EVRSettingsError {
    VRSettingsError_None = 0,
    VRSettingsError_IPCFailed = 1,
    VRSettingsError_WriteFailed = 2,
    VRSettingsError_ReadFailed = 3,
    VRSettingsError_JsonParseFailed = 4,
    VRSettingsError_UnsetSettingHasNoDefault = 5,
};

enum EVRScreenshotError {
    VRScreenshotError_None = 0,
    VRScreenshotError_RequestFailed = 1,
    VRScreenshotError_IncompatibleVersion = 100,
    VRScreenshotError_NotFound = 101,
    VRScreenshotError_BufferTooSmall = 102,
    VRScreenshotError_ScreenshotAlreadyInProgress = 108,
};

typedef EVRInitError HmdError;
typedef EVREye Hmd_Eye;
typedef EColorSpace ColorSpace;
typedef ETrackingResult HmdTrackingResult;
typedef ETrackedDeviceClass TrackedDeviceClass;
typedef ETrackingUniverseOrigin TrackingUniverseOrigin;
typedef ETrackedDeviceProperty TrackedDeviceProperty;
typedef ETrackedPropertyError TrackedPropertyError;
typedef EVRSubmitFlags VRSubmitFlags_t;
typedef EVRState VRState_t;
typedef ECollisionBoundsStyle CollisionBoundsStyle_t;
typedef EVROverlayError VROverlayError;
typedef EVRFirmwareError VRFirmwareError;
typedef EVRCompositorError VRCompositorError;
typedef EVRScreenshotError VRScreenshotsError;

static constexpr uint32_t k_nDriverNone = 4294967295u;
static constexpr uint32_t k_unMaxDriverDebugResponseSize = 32768u;
static constexpr uint32_t k_unTrackedDeviceIndex_Hmd = 0u;
static constexpr uint32_t k_unMaxTrackedDeviceCount = 64u;
static constexpr uint32_t k_unTrackedDeviceIndexOther = 4294967294u;
static constexpr uint32_t k_unTrackedDeviceIndexInvalid = 4294967295u;
static constexpr PropertyContainerHandle_t k_ulInvalidPropertyContainer = 0ull;
static constexpr PropertyTypeTag_t k_unInvalidPropertyTag = 0;
static constexpr PropertyTypeTag_t k_unFloatPropertyTag = 1;
static constexpr PropertyTypeTag_t k_unInt32PropertyTag = 2;
static constexpr PropertyTypeTag_t k_unUint64PropertyTag = 3;
static constexpr PropertyTypeTag_t k_unBoolPropertyTag = 4;
static constexpr PropertyTypeTag_t k_unStringPropertyTag = 5;
static constexpr PropertyTypeTag_t k_unHmdMatrix34PropertyTag = 20;
static constexpr PropertyTypeTag_t k_unHmdMatrix44PropertyTag = 21;
static constexpr PropertyTypeTag_t k_unHmdVector3PropertyTag = 22;
static constexpr PropertyTypeTag_t k_unHmdVector4PropertyTag = 23;
static constexpr PropertyTypeTag_t k_unHiddenAreaPropertyTag = 30;
static constexpr PropertyTypeTag_t k_unPathHandleInfoTag = 31;
static constexpr PropertyTypeTag_t k_unActionPropertyTag = 32;
static constexpr PropertyTypeTag_t k_unInputValuePropertyTag = 33;
static constexpr PropertyTypeTag_t k_unWildcardPropertyTag = 34;
static constexpr PropertyTypeTag_t k_unOpenVRInternalReserved_Start = 1000;
static constexpr PropertyTypeTag_t k_unOpenVRInternalReserved_End = 10000;
static constexpr uint32_t k_unMaxPropertyStringSize = 32768u;
static constexpr uint32_t k_unControllerStateAxisCount = 5u;
static constexpr VROverlayHandle_t k_ulOverlayHandleInvalid = 0ull;
static constexpr uint32_t k_unScreenshotHandleInvalid = 0u;
static constexpr const char* IVRSystem_Version = "IVRSystem_017";
static constexpr const char* IVRExtendedDisplay_Version = "IVRExtendedDisplay_001";
static constexpr const char* IVRTrackedCamera_Version = "IVRTrackedCamera_003";
static constexpr uint32_t k_unMaxApplicationKeyLength = 128u;
static constexpr const char* IVRApplications_Version = "IVRApplications_006";
static constexpr const char* IVRChaperone_Version = "IVRChaperone_003";
static constexpr const char* IVRChaperoneSetup_Version = "IVRChaperoneSetup_005";
static constexpr const char* IVRCompositor_Version = "IVRCompositor_022";
static constexpr uint32_t k_unVROverlayMaxKeyLength = 128u;
static constexpr uint32_t k_unVROverlayMaxNameLength = 128u;
static constexpr uint32_t k_unMaxOverlayCount = 64u;
static constexpr uint32_t k_unMaxOverlayIntersectionMaskPrimitivesCount = 32u;
static constexpr const char* IVROverlay_Version = "IVROverlay_017";
static constexpr const char* IVRRenderModels_Version = "IVRRenderModels_005";
static constexpr uint32_t k_unNotificationTextMaxSize = 256u;
static constexpr const char* IVRNotifications_Version = "IVRNotifications_002";
static constexpr uint32_t k_unMaxSettingsKeyLength = 128u;
static constexpr const char* IVRSettings_Version = "IVRSettings_002";
static constexpr const char* IVRScreenshots_Version = "IVRScreenshots_001";
static constexpr const char* IVRResources_Version = "IVRResources_001";
static constexpr const char* IVRDriverManager_Version = "IVRDriverManager_001";

struct HmdMatrix34_t {
    float m[3][4];
};

struct HmdMatrix44_t {
    float m[4][4];
};

struct HmdVector3_t {
    float v[3];
};

struct HmdVector4_t {
    float v[4];
};

struct HmdVector3d_t {
    double v[3];
};

struct HmdVector2_t {
    float v[2];
};

struct HmdQuaternion_t {
    double w;
    double x;
    double y;
    double z;
};

struct HmdColor_t {
    float r;
    float g;
    float b;
    float a;
};

struct HmdQuad_t {
    HmdVector3_t vCorners[4];
};

struct HmdRect2_t {
    HmdVector2_t vTopLeft;
    HmdVector2_t vBottomRight;
};

struct DistortionCoordinates_t {
    float rfRed[2];
    float rfGreen[2];
    float rfBlue[2];
};

struct Texture_t {
    void* handle;
    ETextureType eType;
    EColorSpace eColorSpace;
};

struct TrackedDevicePose_t {
    HmdMatrix34_t mDeviceToAbsoluteTracking;
    HmdVector3_t vVelocity;
    HmdVector3_t vAngularVelocity;
    ETrackingResult eTrackingResult;
    bool bPoseIsValid;
    bool bDeviceIsConnected;
};

struct VRTextureBounds_t {
    float uMin;
    float vMin;
    float uMax;
    float vMax;
};

struct VREvent_Controller_t {
    uint32_t button;
};

struct VREvent_Mouse_t {
    float x;
    float y;
    uint32_t button;
};

struct VREvent_Scroll_t {
    float xdelta;
    float ydelta;
    uint32_t repeatCount;
};

struct VREvent_TouchPadMove_t {
    bool bFingerDown;
    float flSecondsFingerDown;
    float fValueXFirst;
    float fValueYFirst;
    float fValueXRaw;
    float fValueYRaw;
};

struct VREvent_Notification_t {
    uint64_t ulUserValue;
    uint32_t notificationId;
};

struct VREvent_Process_t {
    uint32_t pid;
    uint32_t oldPid;
    bool bForced;
};

struct VREvent_Overlay_t {
    uint64_t overlayHandle;
};

struct VREvent_Status_t {
    uint32_t statusState;
};

struct VREvent_Keyboard_t {
    char cNewInput[8];
    uint64_t uUserValue;
};

struct VREvent_Ipd_t {
    float ipdMeters;
};

struct VREvent_Chaperone_t {
    uint64_t m_nPreviousUniverse;
    uint64_t m_nCurrentUniverse;
};

struct VREvent_Reserved_t {
    uint64_t reserved0;
    uint64_t reserved1;
};

struct VREvent_PerformanceTest_t {
    uint32_t m_nFidelityLevel;
};

struct VREvent_SeatedZeroPoseReset_t {
    bool bResetBySystemMenu;
};

struct VREvent_Screenshot_t {
    uint32_t handle;
    uint32_t type;
};

struct VREvent_ScreenshotProgress_t {
    float progress;
};

struct VREvent_ApplicationLaunch_t {
    uint32_t pid;
    uint32_t unArgsHandle;
};

struct VREvent_EditingCameraSurface_t {
    uint64_t overlayHandle;
    uint32_t nVisualMode;
};

struct VREvent_MessageOverlay_t {
    uint32_t unVRMessageOverlayResponse;
};

struct VREvent_Property_t {
    PropertyContainerHandle_t container;
    ETrackedDeviceProperty prop;
};

struct VREvent_DualAnalog_t {
    float x;
    float y;
    float transformedX;
    float transformedY;
    EDualAnalogWhich which;
};

union VREvent_Data_t {
    VREvent_Reserved_t reserved;
    VREvent_Controller_t controller;
    VREvent_Mouse_t mouse;
    VREvent_Scroll_t scroll;
    VREvent_Process_t process;
    VREvent_Notification_t notification;
    VREvent_Overlay_t overlay;
    VREvent_Status_t status;
    VREvent_Keyboard_t keyboard;
    VREvent_Ipd_t ipd;
    VREvent_Chaperone_t chaperone;
    VREvent_PerformanceTest_t performanceTest;
    VREvent_TouchPadMove_t touchPadMove;
    VREvent_SeatedZeroPoseReset_t seatedZeroPoseReset;
    VREvent_Screenshot_t screenshot;
    VREvent_ScreenshotProgress_t screenshotProgress;
    VREvent_ApplicationLaunch_t applicationLaunch;
    VREvent_EditingCameraSurface_t cameraSurface;
    VREvent_MessageOverlay_t messageOverlay;
    VREvent_Property_t property;
    VREvent_DualAnalog_t dualAnalog;
};

// Packed to 4 bytes on Linux and macOS for historical reasons; the runtime checks the sizes.
#if defined(__linux__) || defined(__APPLE__)
#pragma pack(push, 4)
#endif

struct VREvent_t {
    uint32_t eventType;
    TrackedDeviceIndex_t trackedDeviceIndex;
    float eventAgeSeconds;
    VREvent_Data_t data;
};

struct VRControllerAxis_t {
    float x;
    float y;
};

struct VRControllerState001_t {
    uint32_t unPacketNum;
    uint64_t ulButtonPressed;
    uint64_t ulButtonTouched;
    VRControllerAxis_t rAxis[5];
};

#if defined(__linux__) || defined(__APPLE__)
#pragma pack(pop)
#endif

typedef VRControllerState001_t VRControllerState_t;

struct HiddenAreaMesh_t {
    const HmdVector2_t* pVertexData;
    uint32_t unTriangleCount;
};

struct Compositor_FrameTiming {
    uint32_t m_nSize;
    uint32_t m_nFrameIndex;
    uint32_t m_nNumFramePresents;
    uint32_t m_nNumMisPresented;
    uint32_t m_nNumDroppedFrames;
    uint32_t m_nReprojectionFlags;
    double m_flSystemTimeInSeconds;
    float m_flPreSubmitGpuMs;
    float m_flPostSubmitGpuMs;
    float m_flTotalRenderGpuMs;
    float m_flCompositorRenderGpuMs;
    float m_flCompositorRenderCpuMs;
    float m_flCompositorIdleCpuMs;
    float m_flClientFrameIntervalMs;
    float m_flPresentCallCpuMs;
    float m_flWaitForPresentCpuMs;
    float m_flSubmitFrameMs;
    float m_flWaitGetPosesCalledMs;
    float m_flNewPosesReadyMs;
    float m_flNewFrameReadyMs;
    float m_flCompositorUpdateStartMs;
    float m_flCompositorUpdateEndMs;
    float m_flCompositorRenderStartMs;
    TrackedDevicePose_t m_HmdPose;
};

struct Compositor_CumulativeStats {
    uint32_t m_nPid;
    uint32_t m_nNumFramePresents;
    uint32_t m_nNumDroppedFrames;
    uint32_t m_nNumReprojectedFrames;
    uint32_t m_nNumFramePresentsOnStartup;
    uint32_t m_nNumDroppedFramesOnStartup;
    uint32_t m_nNumReprojectedFramesOnStartup;
    uint32_t m_nNumLoading;
    uint32_t m_nNumFramePresentsLoading;
    uint32_t m_nNumDroppedFramesLoading;
    uint32_t m_nNumReprojectedFramesLoading;
    uint32_t m_nNumTimedOut;
    uint32_t m_nNumFramePresentsTimedOut;
    uint32_t m_nNumDroppedFramesTimedOut;
    uint32_t m_nNumReprojectedFramesTimedOut;
};

// The runtime implements this class; IVRSystem_Version names the version.
class IVRSystem {
public:
    virtual void GetRecommendedRenderTargetSize(uint32_t* pnWidth, uint32_t* pnHeight) = 0;
    virtual HmdMatrix44_t GetProjectionMatrix(EVREye eEye, float fNearZ, float fFarZ) = 0;
    virtual void GetProjectionRaw(EVREye eEye, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom) = 0;
    virtual bool ComputeDistortion(EVREye eEye, float fU, float fV,
                                   DistortionCoordinates_t* pDistortionCoordinates) = 0;
    virtual HmdMatrix34_t GetEyeToHeadTransform(EVREye eEye) = 0;
    virtual bool GetTimeSinceLastVsync(float* pfSecondsSinceLastVsync, uint64_t* pulFrameCounter) = 0;
    virtual int32_t GetD3D9AdapterIndex() = 0;
    virtual void GetDXGIOutputInfo(int32_t* pnAdapterIndex) = 0;
    virtual void GetOutputDevice(uint64_t* pnDevice, ETextureType textureType, struct VkInstance_T* pInstance) = 0;
    virtual bool IsDisplayOnDesktop() = 0;
    virtual bool SetDisplayVisibility(bool bIsVisibleOnDesktop) = 0;
    virtual void GetDeviceToAbsoluteTrackingPose(ETrackingUniverseOrigin eOrigin,
                                                 float fPredictedSecondsToPhotonsFromNow,
                                                 TrackedDevicePose_t* pTrackedDevicePoseArray,
                                                 uint32_t unTrackedDevicePoseArrayCount) = 0;
    virtual void ResetSeatedZeroPose() = 0;
    virtual HmdMatrix34_t GetSeatedZeroPoseToStandingAbsoluteTrackingPose() = 0;
    virtual HmdMatrix34_t GetRawZeroPoseToStandingAbsoluteTrackingPose() = 0;
    virtual uint32_t GetSortedTrackedDeviceIndicesOfClass(ETrackedDeviceClass eTrackedDeviceClass,
                                                          TrackedDeviceIndex_t* punTrackedDeviceIndexArray,
                                                          uint32_t unTrackedDeviceIndexArrayCount,
                                                          TrackedDeviceIndex_t unRelativeToTrackedDeviceIndex) = 0;
    virtual EDeviceActivityLevel GetTrackedDeviceActivityLevel(TrackedDeviceIndex_t unDeviceId) = 0;
    virtual void ApplyTransform(TrackedDevicePose_t* pOutputPose, const TrackedDevicePose_t* pTrackedDevicePose,
                                const HmdMatrix34_t* pTransform) = 0;
    virtual TrackedDeviceIndex_t GetTrackedDeviceIndexForControllerRole(ETrackedControllerRole unDeviceType) = 0;
    virtual ETrackedControllerRole GetControllerRoleForTrackedDeviceIndex(TrackedDeviceIndex_t unDeviceIndex) = 0;
    virtual ETrackedDeviceClass GetTrackedDeviceClass(TrackedDeviceIndex_t unDeviceIndex) = 0;
    virtual bool IsTrackedDeviceConnected(TrackedDeviceIndex_t unDeviceIndex) = 0;
    virtual bool GetBoolTrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex, ETrackedDeviceProperty prop,
                                              ETrackedPropertyError* pError) = 0;
    virtual float GetFloatTrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex, ETrackedDeviceProperty prop,
                                                ETrackedPropertyError* pError) = 0;
    virtual int32_t GetInt32TrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex, ETrackedDeviceProperty prop,
                                                  ETrackedPropertyError* pError) = 0;
    virtual uint64_t GetUint64TrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex, ETrackedDeviceProperty prop,
                                                    ETrackedPropertyError* pError) = 0;
    virtual HmdMatrix34_t GetMatrix34TrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex,
                                                           ETrackedDeviceProperty prop,
                                                           ETrackedPropertyError* pError) = 0;
    virtual uint32_t GetStringTrackedDeviceProperty(TrackedDeviceIndex_t unDeviceIndex, ETrackedDeviceProperty prop,
                                                    char* pchValue, uint32_t unBufferSize,
                                                    ETrackedPropertyError* pError) = 0;
    virtual const char* GetPropErrorNameFromEnum(ETrackedPropertyError error) = 0;
    virtual bool PollNextEvent(VREvent_t* pEvent, uint32_t uncbVREvent) = 0;
    virtual bool PollNextEventWithPose(ETrackingUniverseOrigin eOrigin, VREvent_t* pEvent, uint32_t uncbVREvent,
                                       TrackedDevicePose_t* pTrackedDevicePose) = 0;
    virtual const char* GetEventTypeNameFromEnum(EVREventType eType) = 0;
    virtual HiddenAreaMesh_t GetHiddenAreaMesh(EVREye eEye, EHiddenAreaMeshType type) = 0;
    virtual bool GetControllerState(TrackedDeviceIndex_t unControllerDeviceIndex, VRControllerState_t* pControllerState,
                                    uint32_t unControllerStateSize) = 0;
    virtual bool GetControllerStateWithPose(ETrackingUniverseOrigin eOrigin,
                                            TrackedDeviceIndex_t unControllerDeviceIndex,
                                            VRControllerState_t* pControllerState, uint32_t unControllerStateSize,
                                            TrackedDevicePose_t* pTrackedDevicePose) = 0;
    virtual void TriggerHapticPulse(TrackedDeviceIndex_t unControllerDeviceIndex, uint32_t unAxisId,
                                    unsigned short usDurationMicroSec) = 0;
    virtual const char* GetButtonIdNameFromEnum(EVRButtonId eButtonId) = 0;
    virtual const char* GetControllerAxisTypeNameFromEnum(EVRControllerAxisType eAxisType) = 0;
    virtual bool CaptureInputFocus() = 0;
    virtual void ReleaseInputFocus() = 0;
    virtual bool IsInputFocusCapturedByAnotherProcess() = 0;
    virtual uint32_t DriverDebugRequest(TrackedDeviceIndex_t unDeviceIndex, const char* pchRequest,
                                        char* pchResponseBuffer, uint32_t unResponseBufferSize) = 0;
    virtual EVRFirmwareError PerformFirmwareUpdate(TrackedDeviceIndex_t unDeviceIndex) = 0;
    virtual void AcknowledgeQuit_Exiting() = 0;
    virtual void AcknowledgeQuit_UserPrompt() = 0;

protected:
    // Never destroyed through this interface: the runtime owns the object.
    ~IVRSystem() = default;
};

// The runtime implements this class; IVRCompositor_Version names the version.
class IVRCompositor {
public:
    virtual void SetTrackingSpace(ETrackingUniverseOrigin eOrigin) = 0;
    virtual ETrackingUniverseOrigin GetTrackingSpace() = 0;
    virtual EVRCompositorError WaitGetPoses(TrackedDevicePose_t* pRenderPoseArray, uint32_t unRenderPoseArrayCount,
                                            TrackedDevicePose_t* pGamePoseArray, uint32_t unGamePoseArrayCount) = 0;
    virtual EVRCompositorError GetLastPoses(TrackedDevicePose_t* pRenderPoseArray, uint32_t unRenderPoseArrayCount,
                                            TrackedDevicePose_t* pGamePoseArray, uint32_t unGamePoseArrayCount) = 0;
    virtual EVRCompositorError GetLastPoseForTrackedDeviceIndex(TrackedDeviceIndex_t unDeviceIndex,
                                                                TrackedDevicePose_t* pOutputPose,
                                                                TrackedDevicePose_t* pOutputGamePose) = 0;
    virtual EVRCompositorError Submit(EVREye eEye, const Texture_t* pTexture, const VRTextureBounds_t* pBounds,
                                      EVRSubmitFlags nSubmitFlags) = 0;
    virtual void ClearLastSubmittedFrame() = 0;
    virtual void PostPresentHandoff() = 0;
    virtual bool GetFrameTiming(Compositor_FrameTiming* pTiming, uint32_t unFramesAgo) = 0;
    virtual uint32_t GetFrameTimings(Compositor_FrameTiming* pTiming, uint32_t nFrames) = 0;
    virtual float GetFrameTimeRemaining() = 0;
    virtual void GetCumulativeStats(Compositor_CumulativeStats* pStats, uint32_t nStatsSizeInBytes) = 0;
    virtual void FadeToColor(float fSeconds, float fRed, float fGreen, float fBlue, float fAlpha, bool bBackground) = 0;
    virtual HmdColor_t GetCurrentFadeColor(bool bBackground) = 0;
    virtual void FadeGrid(float fSeconds, bool bFadeIn) = 0;
    virtual float GetCurrentGridAlpha() = 0;
    virtual EVRCompositorError SetSkyboxOverride(const Texture_t* pTextures, uint32_t unTextureCount) = 0;
    virtual void ClearSkyboxOverride() = 0;
    virtual void CompositorBringToFront() = 0;
    virtual void CompositorGoToBack() = 0;
    virtual void CompositorQuit() = 0;
    virtual bool IsFullscreen() = 0;
    virtual uint32_t GetCurrentSceneFocusProcess() = 0;
    virtual uint32_t GetLastFrameRenderer() = 0;
    virtual bool CanRenderScene() = 0;
    virtual void ShowMirrorWindow() = 0;
    virtual void HideMirrorWindow() = 0;
    virtual bool IsMirrorWindowVisible() = 0;
    virtual void CompositorDumpImages() = 0;
    virtual bool ShouldAppRenderWithLowResources() = 0;
    virtual void ForceInterleavedReprojectionOn(bool bOverride) = 0;
    virtual void ForceReconnectProcess() = 0;
    virtual void SuspendRendering(bool bSuspend) = 0;
    virtual EVRCompositorError GetMirrorTextureD3D11(EVREye eEye, void* pD3D11DeviceOrResource,
                                                     void** ppD3D11ShaderResourceView) = 0;
    virtual void ReleaseMirrorTextureD3D11(void* pD3D11ShaderResourceView) = 0;
    virtual EVRCompositorError GetMirrorTextureGL(EVREye eEye, glUInt_t* pglTextureId,
                                                  glSharedTextureHandle_t* pglSharedTextureHandle) = 0;
    virtual bool ReleaseSharedGLTexture(glUInt_t glTextureId, glSharedTextureHandle_t glSharedTextureHandle) = 0;
    virtual void LockGLSharedTextureForAccess(glSharedTextureHandle_t glSharedTextureHandle) = 0;
    virtual void UnlockGLSharedTextureForAccess(glSharedTextureHandle_t glSharedTextureHandle) = 0;
    virtual uint32_t GetVulkanInstanceExtensionsRequired(char* pchValue, uint32_t unBufferSize) = 0;
    virtual uint32_t GetVulkanDeviceExtensionsRequired(struct VkPhysicalDevice_T* pPhysicalDevice, char* pchValue,
                                                       uint32_t unBufferSize) = 0;
    virtual void SetExplicitTimingMode(EVRCompositorTimingMode eTimingMode) = 0;
    virtual EVRCompositorError SubmitExplicitTimingData() = 0;

protected:
    // Never destroyed through this interface: the runtime owns the object.
    ~IVRCompositor() = default;
};

// Render models: the meshes and textures of the tracked devices, for applications that draw them.

// Component names that controller render models commonly have.
static constexpr const char* k_pch_Controller_Component_GDC2015 = "gdc2015";
static constexpr const char* k_pch_Controller_Component_Base = "base";
static constexpr const char* k_pch_Controller_Component_Tip = "tip";
static constexpr const char* k_pch_Controller_Component_HandGrip = "handgrip";
static constexpr const char* k_pch_Controller_Component_Status = "status";

// Texture ids below zero mean "no texture".
static constexpr TextureID_t INVALID_TEXTURE_ID = -1;

struct RenderModel_ComponentState_t {
    HmdMatrix34_t mTrackingToComponentRenderModel;  // what to draw the component's model with
    HmdMatrix34_t mTrackingToComponentLocal;        // the component's own frame (e.g. a tip)
    VRComponentProperties uProperties;              // EVRComponentProperty bits
};

// The mesh structs are packed to 4 bytes on Linux and macOS, so that 32- and 64-bit builds once shared
// one layout: pointers follow 4-byte fields without padding.
#if defined(__linux__) || defined(__APPLE__)
#pragma pack(push, 4)
#endif

struct RenderModel_Vertex_t {
    HmdVector3_t vPosition;
    HmdVector3_t vNormal;
    float rfTextureCoord[2];
};

// RGBA, 8 bits per channel, unWidth * unHeight * 4 bytes, top row first.
struct RenderModel_TextureMap_t {
    uint16_t unWidth;
    uint16_t unHeight;
    const uint8_t* rubTextureMapData;
};

struct RenderModel_t {
    const RenderModel_Vertex_t* rVertexData;
    uint32_t unVertexCount;
    const uint16_t* rIndexData;  // 3 * unTriangleCount indices
    uint32_t unTriangleCount;
    TextureID_t diffuseTextureId;  // INVALID_TEXTURE_ID when the model has no texture
};

struct RenderModel_ControllerMode_State_t {
    bool bScrollWheelVisible;
};

#if defined(__linux__) || defined(__APPLE__)
#pragma pack(pop)
#endif

// The runtime implements this class; IVRRenderModels_Version names the version. The *_Async calls
// answer VRRenderModelError_Loading until the data is ready: applications call them again each frame.
class IVRRenderModels {
public:
    virtual EVRRenderModelError LoadRenderModel_Async(const char* pchRenderModelName,
                                                      RenderModel_t** ppRenderModel) = 0;
    virtual void FreeRenderModel(RenderModel_t* pRenderModel) = 0;
    virtual EVRRenderModelError LoadTexture_Async(TextureID_t textureId, RenderModel_TextureMap_t** ppTexture) = 0;
    virtual void FreeTexture(RenderModel_TextureMap_t* pTexture) = 0;
    virtual EVRRenderModelError LoadTextureD3D11_Async(TextureID_t textureId, void* pD3D11Device,
                                                       void** ppD3D11Texture2D) = 0;
    virtual EVRRenderModelError LoadIntoTextureD3D11_Async(TextureID_t textureId, void* pDstTexture) = 0;
    virtual void FreeTextureD3D11(void* pD3D11Texture2D) = 0;
    virtual uint32_t GetRenderModelName(uint32_t unRenderModelIndex, char* pchRenderModelName,
                                        uint32_t unRenderModelNameLen) = 0;
    virtual uint32_t GetRenderModelCount() = 0;
    virtual uint32_t GetComponentCount(const char* pchRenderModelName) = 0;
    virtual uint32_t GetComponentName(const char* pchRenderModelName, uint32_t unComponentIndex, char* pchComponentName,
                                      uint32_t unComponentNameLen) = 0;
    virtual uint64_t GetComponentButtonMask(const char* pchRenderModelName, const char* pchComponentName) = 0;
    virtual uint32_t GetComponentRenderModelName(const char* pchRenderModelName, const char* pchComponentName,
                                                 char* pchComponentRenderModelName,
                                                 uint32_t unComponentRenderModelNameLen) = 0;
    virtual bool GetComponentState(const char* pchRenderModelName, const char* pchComponentName,
                                   const VRControllerState_t* pControllerState,
                                   const RenderModel_ControllerMode_State_t* pState,
                                   RenderModel_ComponentState_t* pComponentState) = 0;
    virtual bool RenderModelHasComponent(const char* pchRenderModelName, const char* pchComponentName) = 0;
    virtual uint32_t GetRenderModelThumbnailURL(const char* pchRenderModelName, char* pchThumbnailURL,
                                                uint32_t unThumbnailURLLen, EVRRenderModelError* peError) = 0;
    virtual uint32_t GetRenderModelOriginalPath(const char* pchRenderModelName, char* pchOriginalPath,
                                                uint32_t unOriginalPathLen, EVRRenderModelError* peError) = 0;
    virtual const char* GetRenderModelErrorNameFromEnum(EVRRenderModelError error) = 0;

protected:
    // Never destroyed through this interface: the runtime owns the object.
    ~IVRRenderModels() = default;
};

#pragma pack(pop)

// The client library's loader functions (norvane_openvr_client). C linkage keeps their symbol names
// the bare function names, as a runtime-independent client library exports them.
extern "C" {
uint32_t VR_InitInternal2(EVRInitError* peError, EVRApplicationType eApplicationType, const char* pStartupInfo);
void VR_ShutdownInternal();
void* VR_GetGenericInterface(const char* pchInterfaceVersion, EVRInitError* peError);
bool VR_IsInterfaceVersionValid(const char* pchInterfaceVersion);
uint32_t VR_GetInitToken();
}

// Each module keeps its own copy of the state below: hidden visibility stops the dynamic linker
// from merging the copies of two shared objects that both include this header.
#define NORVANE_OPENVR_MODULE_LOCAL __attribute__((visibility("hidden")))

// The interface pointers this module has fetched since the runtime's init token last changed.
struct NORVANE_OPENVR_MODULE_LOCAL COpenVRContext {
    IVRSystem* m_pVRSystem = nullptr;
    IVRCompositor* m_pVRCompositor = nullptr;
    IVRRenderModels* m_pVRRenderModels = nullptr;

    void Clear()
    {
        m_pVRSystem = nullptr;
        m_pVRCompositor = nullptr;
        m_pVRRenderModels = nullptr;
    }

    // A token that moved on means a shutdown (and perhaps a new init) happened: every cached pointer
    // may be dangling.
    void CheckClear();

    IVRSystem* VRSystem();
    IVRCompositor* VRCompositor();
    IVRRenderModels* VRRenderModels();
};

NORVANE_OPENVR_MODULE_LOCAL inline uint32_t& VRToken()
{
    static uint32_t token = 0;
    return token;
}

NORVANE_OPENVR_MODULE_LOCAL inline COpenVRContext& OpenVRInternal_ModuleContext()
{
    static COpenVRContext context;
    return context;
}

inline void COpenVRContext::CheckClear()
{
    if (VRToken() != VR_GetInitToken()) {
        Clear();
        VRToken() = VR_GetInitToken();
    }
}

inline IVRSystem* COpenVRContext::VRSystem()
{
    CheckClear();
    if (m_pVRSystem == nullptr) {
        EVRInitError error = VRInitError_None;
        m_pVRSystem = static_cast<IVRSystem*>(VR_GetGenericInterface(IVRSystem_Version, &error));
    }
    return m_pVRSystem;
}

inline IVRCompositor* COpenVRContext::VRCompositor()
{
    CheckClear();
    if (m_pVRCompositor == nullptr) {
        EVRInitError error = VRInitError_None;
        m_pVRCompositor = static_cast<IVRCompositor*>(VR_GetGenericInterface(IVRCompositor_Version, &error));
    }
    return m_pVRCompositor;
}

inline IVRRenderModels* COpenVRContext::VRRenderModels()
{
    CheckClear();
    if (m_pVRRenderModels == nullptr) {
        EVRInitError error = VRInitError_None;
        m_pVRRenderModels = static_cast<IVRRenderModels*>(VR_GetGenericInterface(IVRRenderModels_Version, &error));
    }
    return m_pVRRenderModels;
}

NORVANE_OPENVR_MODULE_LOCAL inline IVRSystem* VRSystem() { return OpenVRInternal_ModuleContext().VRSystem(); }

NORVANE_OPENVR_MODULE_LOCAL inline IVRCompositor* VRCompositor()
{
    return OpenVRInternal_ModuleContext().VRCompositor();
}

NORVANE_OPENVR_MODULE_LOCAL inline IVRRenderModels* VRRenderModels()
{
    return OpenVRInternal_ModuleContext().VRRenderModels();
}

// Starts the runtime. On success returns the system interface; otherwise null, with the reason in
// *peError. A runtime that does not offer IVRSystem_017 is shut down again.
NORVANE_OPENVR_MODULE_LOCAL inline IVRSystem* VR_Init(EVRInitError* peError, EVRApplicationType eApplicationType,
                                                      const char* pStartupInfo = nullptr)
{
    EVRInitError error = VRInitError_None;
    VRToken() = VR_InitInternal2(&error, eApplicationType, pStartupInfo);
    OpenVRInternal_ModuleContext().Clear();

    IVRSystem* system = nullptr;
    if (error == VRInitError_None) {
        if (VR_IsInterfaceVersionValid(IVRSystem_Version)) {
            system = VRSystem();
        } else {
            VR_ShutdownInternal();
            error = VRInitError_Init_InterfaceNotFound;
        }
    }
    if (peError != nullptr)
        *peError = error;
    return system;
}

NORVANE_OPENVR_MODULE_LOCAL inline void VR_Shutdown() { VR_ShutdownInternal(); }

}  // namespace vr
