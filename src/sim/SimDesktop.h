#pragma once

#include "platform/Platform.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimAccessibility.h"
#include "sim/SimApplication.h"
#include "sim/SimAudioHardware.h"
#include "sim/SimBundle.h"
#include "sim/SimCollator.h"
#include "sim/SimCursor.h"
#include "sim/SimDisplayServices.h"
#include "sim/SimDisplays.h"
#include "sim/SimEventStore.h"
#include "sim/SimEventTaps.h"
#include "sim/SimHaptics.h"
#include "sim/SimLoginItem.h"
#include "sim/SimPanelWindows.h"
#include "sim/SimPointer.h"
#include "sim/SimSceneHost.h"
#include "sim/SimScreens.h"
#include "sim/SimTextMetrics.h"
#include "sim/SimUrlSession.h"
#include "sim/SimUserCalendar.h"
#include "sim/SimUserDefaults.h"
#include "sim/SimWorkspace.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// A whole desktop in memory under one manual clock: everything that the program reaches through
/// its ports, and everything that a user or another program may do to it. Empty at first: no
/// screen, no sound device, no display, nothing stored, but trusted. Main thread only.
class SimDesktop {
 public:
  /// `textMetrics` measures the text; without it, text is measured without a font. It must outlive
  /// the desktop, as the desktop must outlive the program.
  explicit SimDesktop(const view::TextMetrics* textMetrics = nullptr)
      : platform_{.runLoop = runLoop,
                  .application = application,
                  .userDefaults = userDefaults,
                  .screens = screens,
                  .panelWindows = panelWindows,
                  .pointer = pointer,
                  .cursor = cursor,
                  .haptics = haptics,
                  .accessibility = accessibility,
                  .eventTaps = eventTaps,
                  .audioHardware = audioHardware,
                  .displays = displays,
                  .displayServices = displayServices,
                  .userCalendar = userCalendar,
                  .eventStore = eventStore,
                  .collator = collator,
                  .workspace = workspace,
                  .loginItem = loginItem,
                  .urlSession = urlSession,
                  .bundle = bundle,
                  .sceneHost = sceneHost,
                  .textMetrics = textMetrics ? *textMetrics : simTextMetrics_} {}
  SimDesktop(const SimDesktop&) = delete;
  SimDesktop& operator=(const SimDesktop&) = delete;

  [[nodiscard]] const platform::Platform& platform() const { return platform_; }

  Trace trace;
  ManualRunLoop runLoop{trace};
  SimApplication application{trace};
  SimUserDefaults userDefaults{trace};
  SimScreens screens{trace};
  SimPointer pointer;
  SimPanelWindows panelWindows{trace, runLoop, pointer};
  SimCursor cursor{trace};
  SimHaptics haptics{trace};
  SimAccessibility accessibility{trace};
  SimEventTaps eventTaps{trace, accessibility};
  SimAudioHardware audioHardware{trace, runLoop};
  SimDisplays displays;
  SimDisplayServices displayServices{displays, trace};
  SimUserCalendar userCalendar{runLoop};
  SimEventStore eventStore{trace, runLoop};
  SimCollator collator;
  SimWorkspace workspace{trace};
  SimLoginItem loginItem{trace};
  SimUrlSession urlSession{trace, runLoop};
  SimBundle bundle;
  SimSceneHost sceneHost{trace, runLoop};

 private:
  SimTextMetrics simTextMetrics_;
  platform::Platform platform_;
};

}  // namespace valdrix::sim
