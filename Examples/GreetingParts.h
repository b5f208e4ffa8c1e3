// SPDX-License-Identifier: Apache-2.0
// The classes of the interface file Greeting.nib.
#pragma once

#include "Foundation/NSArray.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

/// Something with a text.
class GPLabel : public NSObject {
    PELVOR_CLASS(GPLabel, NSObject);

  public:
    NSString* text() { return _text; }
    void setText(NSString* text) { _text = text->copy(); }

  protected:
    GPLabel() = default;
    ~GPLabel() = default;

  private:
    Retained<NSString> _text;
};

/// A label that sends its target a message when it is pressed.
class GPButton : public GPLabel {
    PELVOR_CLASS(GPButton, GPLabel);

  public:
    void press();
    /// The target is not retained.
    void setTarget(id target) { _target = target; }
    void setAction(SEL action) { _action = action; }

  protected:
    GPButton() = default;
    ~GPButton() = default;

  private:
    Unretained<Object> _target;
    SEL _action;
};

/// A panel with parts.
class GPPanel : public NSObject {
    PELVOR_CLASS(GPPanel, NSObject);
    PELVOR_CREATORS(initWithTitle);

  public:
    static Retained<GPPanel> initWithTitle(NSString* title, Class* cls = classObject());

    NSArray* parts() { return _parts; }
    void setParts(NSArray* parts) { _parts = parts->copy(); }
    void setSize(NSSize size) { _size = size; }
    void setIsResizable(bool isResizable) { _isResizable = isResizable; }
    void awakeFromNib() { _isComplete = true; }
    /// "Welcome, 320 by 200", with what the panel is.
    NSString* description() override;

  protected:
    GPPanel() = default;
    ~GPPanel() = default;

  private:
    Retained<NSString> _title;
    Retained<NSArray> _parts;
    NSSize _size;
    bool _isResizable = true;
    bool _isComplete = false;
};

/// What owns the panel while it is open.
class GPController : public NSObject {
    PELVOR_CLASS(GPController, NSObject);

  public:
    GPPanel* panel() { return _panel; }
    void setPanel(GPPanel* panel) { _panel.set(panel); }
    void close(id sender) { _panel = nullptr; }

  protected:
    GPController() = default;
    ~GPController() = default;

  private:
    Retained<GPPanel> _panel;
};

}  // namespace pelvor
