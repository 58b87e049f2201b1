#pragma once

#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/AudioHardware.h"
#include "platform/Bundle.h"
#include "platform/Collator.h"
#include "platform/Cursor.h"
#include "platform/DisplayServices.h"
#include "platform/Displays.h"
#include "platform/EventStore.h"
#include "platform/EventTaps.h"
#include "platform/Haptics.h"
#include "platform/LoginItem.h"
#include "platform/PanelWindow.h"
#include "platform/Pointer.h"
#include "platform/RunLoop.h"
#include "platform/SceneHost.h"
#include "platform/Screens.h"
#include "platform/UrlSession.h"
#include "platform/UserCalendar.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "view/Canvas.h"

namespace valdrix::platform {

/// All ports of one desktop, handed out together. The adapters outlive everything that was built on
/// them.
struct Platform {
  RunLoop& runLoop;
  Application& application;
  UserDefaults& userDefaults;
  Screens& screens;
  PanelWindows& panelWindows;
  Pointer& pointer;
  Cursor& cursor;
  Haptics& haptics;
  Accessibility& accessibility;
  EventTaps& eventTaps;
  AudioHardware& audioHardware;
  Displays& displays;
  DisplayServices& displayServices;
  UserCalendar& userCalendar;
  EventStore& eventStore;
  const Collator& collator;
  Workspace& workspace;
  LoginItem& loginItem;
  UrlSession& urlSession;
  const Bundle& bundle;
  SceneHost& sceneHost;
  const view::TextMetrics& textMetrics;
};

}  // namespace valdrix::platform
