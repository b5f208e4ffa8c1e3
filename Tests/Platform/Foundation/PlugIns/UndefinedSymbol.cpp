// SPDX-License-Identifier: Apache-2.0
// Code that calls a function that nobody has.
int functionThatNobodyHas();
int result = functionThatNobodyHas();
