# The instrument manager and its measurement worker.
zk_library(k4n_manager
  SOURCES
    ErrorTrail.cpp
    K4NManager.cpp
    K4NManager_Lists.cpp
    K4NManager_Measurement.cpp
    K4NManager_Pulse.cpp
    K4NManager_RF.cpp
    K4NManager_Session.cpp
    K4NManager_Sweep.cpp
    K4NManager_System.cpp
    K4NManager_Trigger.cpp
    MeasurementBlock.cpp
    MeasurementWorker.cpp
    ProtocolLibrary.cpp
    RealArray.cpp
  LIBS k4n_link measurement platform_com platform_os)
