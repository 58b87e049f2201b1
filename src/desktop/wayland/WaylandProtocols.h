#pragma once

#include <wayland-client.h>
#include <wayland-protocols/fractional-scale-v1.h>
#include <wayland-protocols/plasma-shell.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>
#include <wayland-protocols/xdg-shell.h>

// A parameter of this protocol has the name of a keyword.
#define namespace namespace_
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>
#undef namespace
