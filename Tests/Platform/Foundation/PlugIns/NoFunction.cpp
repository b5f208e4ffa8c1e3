// SPDX-License-Identifier: Apache-2.0
// Code that is no plug-in.
extern "C" __attribute__((visibility("default"))) int answer() { return 42; }
