// SPDX-License-Identifier: Apache-2.0
// The classes of the object model, for headers that only name them: the floor's table of contents.
#pragma once

namespace pelvor {

class AutoreleasePool;    ///< keeps autoreleased objects until a scope ends
class Class;              ///< a class as an object: its name, methods and instances
class NSException;        ///< a programming error: what C++ throws and catches
class NSInvocation;       ///< a message as an object, to be sent, forwarded or kept
class NSMethodSignature;  ///< the types of a method's arguments and result
class NSObject;           ///< the root of most classes
class NSProxy;            ///< the root of objects that stand in for others
class Object;             ///< what every object is: `id` points to one
class SEL;                ///< the name of a method
class WeakHandle;         ///< a reference that becomes null when its object ends

}  // namespace pelvor
