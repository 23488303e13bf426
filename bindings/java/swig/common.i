// SPDX-License-Identifier: Apache-2.0
// How C++ reads in Java, for every interface file: texts, lists, numbers, who owns what, errors.

#define MAV_API
// Constraints are not read; what they constrain are templates, which have no wrapper anyway.
#define requires(...)

// Const forms that Java cannot tell apart, operators, templates, protected members.
#pragma SWIG nowarn=302,309,325,342,362,365,366,367,368,378,389,401,451,503,509,512,516,517

%include <enums.swg>
%include <stdint.i>
%apply size_t { std::size_t };
%immutable;

%pragma(java) moduleclassmodifiers="final class"
%pragma(java) jniclassclassmodifiers="final class"
%pragma(java) jniclasscode=%{
  static {
    NativeLibrary.load();
  }
%}

%{
#include <mav_platform/PlatformList.h>
#include <mav_platform/PlatformOverview.h>
#include <mav_platform/mav_platform.h>

#include <boost/property_tree/ptree.hpp>

#include "Bridge.h"

// A destructor has no Java object beside its address.
[[maybe_unused]] static jobject const jarg1_ = nullptr;
#define MAV_PROXY(address) address##_
%}

// --- errors ----------------------------------------------------------------------------------------

%exception %{
  try {
    $action
  } catch (...) {
    mav_java::raise(jenv);
    return $null;
  }
%}
%typemap(check) SWIGTYPE *self %{
  if (!mav_java::isLive(jenv, MAV_PROXY($input))) return $null;
%}
%typemap(check) SWIGTYPE * %{
  if (!$1) {
    mav_java::raiseNull(jenv, "an argument is null");
    return $null;
  }
%}

// --- objects ---------------------------------------------------------------------------------------

%typemap(javabase, notderived="1") SWIGTYPE "NativeObject"
%typemap(javabody) SWIGTYPE %{
  private final transient long swigCPtr;

  $javaclassname(long address, NativeHandle handle) {
    super(address, handle);
    swigCPtr = address;
  }

  $javaclassname(NativeHandle handle) {
    this(handle.address(), handle);
  }

  static long getCPtr($javaclassname object) {
    return object == null ? 0 : live(object, object.swigCPtr);
  }
%}
%typemap(javabody_derived) SWIGTYPE %{
  private final transient long swigCPtr;

  $javaclassname(long address, NativeHandle handle) {
    super($imclassname.$javaclazznameSWIGUpcast(address), handle);
    swigCPtr = address;
  }

  $javaclassname(NativeHandle handle) {
    this(handle.address(), handle);
  }

  static long getCPtr($javaclassname object) {
    return object == null ? 0 : live(object, object.swigCPtr);
  }
%}
%typemap(javaconstruct) SWIGTYPE { this(new NativeHandle($imcall, $javaclassname::swigDestroy)); }
%typemap(javafinalize) SWIGTYPE ""
%typemap(javadestruct, methodname="swigDestroy", methodmodifiers="static", parameters="long swigCPtr") SWIGTYPE { $jnicall; }
%typemap(javadestruct_derived, methodname="swigDestroy", methodmodifiers="static", parameters="long swigCPtr") SWIGTYPE { $jnicall; }
%typemap(javaout) SWIGTYPE { return new $javaclassname(new NativeHandle($jnicall, $javaclassname::swigDestroy)); }
%typemap(javaout) SWIGTYPE *, SWIGTYPE & {
    long address = $jnicall;
    return address == 0 ? null : new $javaclassname(address, owner());
  }

// An object that refers to its argument of that name keeps it.
%define MAV_KEEPS(CLASS, ARGUMENT)
%typemap(javaconstruct) CLASS { this(new NativeHandle($imcall, CLASS::swigDestroy, keep(ARGUMENT))); }
%enddef

%define MAV_CLOSEABLE(CLASS)
%typemap(javainterfaces) CLASS "AutoCloseable"
%typemap(javacode) CLASS %{
  /** Frees what the object holds; using it, or what came from it, is an error from now on. */
  @Override
  public void close() {
    handle().close();
  }
%}
%enddef

// Who is handed out as BASE is a DERIVED.
%define MAV_CONCRETE(BASE, DERIVED)
%typemap(out) BASE *, const BASE * %{
  *(DERIVED **)&$result = mav_java::cast<DERIVED>($1);
%}
%typemap(javaout) BASE *, const BASE * {
    long address = $jnicall;
    return address == 0 ? null : new DERIVED(address, owner());
  }
%enddef

// --- texts -----------------------------------------------------------------------------------------

namespace std {
%naturalvar string;
class string;
class string_view;
}
%typemap(jni) std::string, const std::string &, std::string_view, const char * "jstring"
%typemap(jtype) std::string, const std::string &, std::string_view, const char * "String"
%typemap(jstype) std::string, const std::string &, std::string_view, const char * "String"
%typemap(javain) std::string, const std::string &, std::string_view, const char * "$javainput"
%typemap(javaout) std::string, const std::string &, std::string_view, const char * { return $jnicall; }
%typemap(typecheck, precedence=SWIG_TYPECHECK_STRING) std::string, const std::string &, std::string_view ""
%typemap(in) std::string %{ if (!mav_java::read(jenv, $input, $1)) return $null; %}
%typemap(in) const std::string & (std::string text) %{
  if (!mav_java::read(jenv, $input, text)) return $null;
  $1 = &text;
%}
%typemap(in) std::string_view (std::string text) %{
  if (!mav_java::read(jenv, $input, text)) return $null;
  $1 = text;
%}
%typemap(out) std::string, std::string_view, const char * %{ $result = mav_java::text(jenv, $1); %}
%typemap(out) const std::string & %{ $result = mav_java::text(jenv, *$1); %}

// A text that a query fills: a StringBuilder that it is appended to.
%typemap(jni) std::string & "jobject"
%typemap(jtype) std::string & "StringBuilder"
%typemap(jstype) std::string & "StringBuilder"
%typemap(javain) std::string & "java.util.Objects.requireNonNull($javainput)"
%typemap(in) std::string & (std::string text) "$1 = &text;"
%typemap(argout) std::string & "mav_java::append(jenv, $input, *$1);"
%typemap(argout) const std::string & ""

// --- numbers ---------------------------------------------------------------------------------------

%typemap(in) unsigned int %{
  if ($input < 0 || $input > 0xffffffffLL) {
    mav_java::raiseRange(jenv, $input, false);
    return $null;
  }
  $1 = static_cast<unsigned>($input);
%}
%typemap(in) size_t, std::size_t, std::uint64_t limit %{
  if ($input < 0) {
    mav_java::raiseRange(jenv, $input, false);
    return $null;
  }
  $1 = static_cast<std::size_t>($input);
%}
// Of the four CDMA engines.
%typemap(in) unsigned int index %{
  if ($input < 0 || $input >= static_cast<jlong>(HMAVHardwareFeatureRom::CDMA_COUNT)) {
    mav_java::raiseRange(jenv, $input, true);
    return $null;
  }
  $1 = static_cast<unsigned>($input);
%}
%typemap(jni) std::uint64_t limit "jlong"
%typemap(jtype) std::uint64_t limit "long"
%typemap(jstype) std::uint64_t limit "long"
%typemap(javain) std::uint64_t limit "$javainput"
%typemap(jni) const std::optional< int > & "jobject"
%typemap(jtype) const std::optional< int > & "Integer"
%typemap(jstype) const std::optional< int > & "Integer"
%typemap(javaout) const std::optional< int > & { return $jnicall; }
%typemap(out) const std::optional< int > & %{ $result = mav_java::integer(jenv, *$1); %}
// Found or not: what is not found is null.
%typemap(in, numinputs=0) bool &found (bool found) "found = false; $1 = &found;"

// --- lists of texts --------------------------------------------------------------------------------

%define MAV_TEXTS(...)
%typemap(jni) __VA_ARGS__, __VA_ARGS__ *, const __VA_ARGS__ & "jobjectArray"
%typemap(jtype) __VA_ARGS__, __VA_ARGS__ *, const __VA_ARGS__ & "String[]"
%typemap(jstype) __VA_ARGS__, __VA_ARGS__ *, const __VA_ARGS__ & "java.util.List<String>"
%typemap(javain) __VA_ARGS__, __VA_ARGS__ *, const __VA_ARGS__ & "NativeObject.texts($javainput)"
%typemap(javaout) __VA_ARGS__, __VA_ARGS__ *, const __VA_ARGS__ & { return list($jnicall); }
%typemap(in) __VA_ARGS__ %{ if (!mav_java::read(jenv, $input, $1)) return $null; %}
%typemap(in) const __VA_ARGS__ & (__VA_ARGS__ texts), __VA_ARGS__ * (__VA_ARGS__ texts) %{
  if (!mav_java::read(jenv, $input, texts)) return $null;
  $1 = &texts;
%}
%typemap(out) __VA_ARGS__ %{ $result = mav_java::texts(jenv, static_cast<__VA_ARGS__ &&>($1)); %}
%typemap(out) __VA_ARGS__ *, const __VA_ARGS__ & %{ $result = mav_java::texts(jenv, *$1); %}
%typemap(typecheck, precedence=SWIG_TYPECHECK_STRING_ARRAY) __VA_ARGS__, const __VA_ARGS__ & ""
%typemap(in, numinputs=0) __VA_ARGS__ &out (__VA_ARGS__ out) "$1 = &out;"
%typemap(argout) __VA_ARGS__ &out %{ $result = mav_java::texts(jenv, *$1); %}
// A list that a query appends to, and one that it reads and changes, which Java does not see.
%typemap(jni) __VA_ARGS__ &reasons "jobject"
%typemap(jtype) __VA_ARGS__ &reasons "java.util.List<String>"
%typemap(jstype) __VA_ARGS__ &reasons "java.util.List<String>"
%typemap(javain) __VA_ARGS__ &reasons "java.util.Objects.requireNonNull($javainput)"
%typemap(in) __VA_ARGS__ &reasons (__VA_ARGS__ reasons) "$1 = &reasons;"
%typemap(argout) __VA_ARGS__ &reasons "mav_java::add(jenv, $input, *$1);"
%typemap(jni) __VA_ARGS__ &dirs "jobjectArray"
%typemap(jtype) __VA_ARGS__ &dirs "String[]"
%typemap(jstype) __VA_ARGS__ &dirs "java.util.List<String>"
%typemap(javain) __VA_ARGS__ &dirs "NativeObject.texts($javainput)"
%typemap(in) __VA_ARGS__ &dirs (__VA_ARGS__ dirs) %{
  if (!mav_java::read(jenv, $input, dirs)) return $null;
  $1 = &dirs;
%}
%enddef
MAV_TEXTS(HSTVector< std::string >)
MAV_TEXTS(std::vector< std::string >)

// Queries that fill a list of texts: TYPE, and the name with or without its class.
%define MAV_FILLS_TEXTS(TYPE, NAME)
%typemap(jni) TYPE NAME "jobjectArray"
%typemap(jtype) TYPE NAME "String[]"
%typemap(jstype) TYPE NAME "java.util.List<String>"
%typemap(out) TYPE NAME ""
%typemap(javaout) TYPE NAME { return list($jnicall); }
%enddef

%typemap(jni) HSTVector< std::pair< std::string, std::string > >, const HSTVector< std::pair< std::string, std::string > > & "jobjectArray"
%typemap(jtype) HSTVector< std::pair< std::string, std::string > >, const HSTVector< std::pair< std::string, std::string > > & "String[]"
%typemap(jstype) HSTVector< std::pair< std::string, std::string > >, const HSTVector< std::pair< std::string, std::string > > & "java.util.List<java.util.Map.Entry<String, String>>"
%typemap(javain) const HSTVector< std::pair< std::string, std::string > > & "NativeObject.texts($javainput)"
%typemap(javaout) HSTVector< std::pair< std::string, std::string > >, const HSTVector< std::pair< std::string, std::string > > & { return entries($jnicall); }
%typemap(out) HSTVector< std::pair< std::string, std::string > > %{
  $result = mav_java::texts(jenv, static_cast<HSTVector< std::pair< std::string, std::string > > &&>($1));
%}
%typemap(out) const HSTVector< std::pair< std::string, std::string > > & %{ $result = mav_java::texts(jenv, *$1); %}
%typemap(in) const HSTVector< std::pair< std::string, std::string > > & (HSTVector< std::pair< std::string, std::string > > pairs, HSTVector< std::string > texts) %{
  if (!mav_java::read(jenv, $input, texts)) return $null;
  for (std::size_t i = 0; i + 1 < texts.size(); i += 2) pairs.emplace_back(texts[i], texts[i + 1]);
  $1 = &pairs;
%}
%typemap(in, numinputs=0) HSTVector< std::pair< std::string, std::string > > &out (HSTVector< std::pair< std::string, std::string > > out) "$1 = &out;"
%typemap(argout) HSTVector< std::pair< std::string, std::string > > &out %{ $result = mav_java::texts(jenv, *$1); %}
%define MAV_FILLS_PAIRS(TYPE, NAME)
%typemap(jni) TYPE NAME "jobjectArray"
%typemap(jtype) TYPE NAME "String[]"
%typemap(jstype) TYPE NAME "java.util.List<java.util.Map.Entry<String, String>>"
%typemap(out) TYPE NAME ""
%typemap(javaout) TYPE NAME { return entries($jnicall); }
%enddef

%typemap(jni) const std::map< std::string, std::string > & "jobjectArray"
%typemap(jtype) const std::map< std::string, std::string > & "String[]"
%typemap(jstype) const std::map< std::string, std::string > & "java.util.Map<String, String>"
%typemap(javaout) const std::map< std::string, std::string > & { return map($jnicall); }
%typemap(out) const std::map< std::string, std::string > & %{ $result = mav_java::texts(jenv, *$1); %}

// --- lists of objects ------------------------------------------------------------------------------

// Lists of, and iterators over, pointers to TYPE; Java sees the DERIVED that they are.
%define MAV_POINTERS(TYPE, JAVA, DERIVED)
%typemap(jni) HSTVector< TYPE * >, const HSTVector< TYPE * > &, const std::deque< TYPE > &, std::list< TYPE > &, HSTFwdIter< TYPE * > * "jlongArray"
%typemap(jtype) HSTVector< TYPE * >, const HSTVector< TYPE * > &, const std::deque< TYPE > &, std::list< TYPE > &, HSTFwdIter< TYPE * > * "long[]"
%typemap(jstype) HSTVector< TYPE * >, const HSTVector< TYPE * > &, const std::deque< TYPE > &, std::list< TYPE > &, HSTFwdIter< TYPE * > * "java.util.List<JAVA>"
%typemap(javaout) HSTVector< TYPE * >, const HSTVector< TYPE * > &, const std::deque< TYPE > &, std::list< TYPE > &, HSTFwdIter< TYPE * > * {
    final NativeHandle owner = owner();
    return list($jnicall, address -> new JAVA(address, owner));
  }
%typemap(out) HSTVector< TYPE * > %{
  $result = mav_java::pointers<DERIVED>(jenv, static_cast<HSTVector< TYPE * > &&>($1));
%}
%typemap(out) const HSTVector< TYPE * > &, const std::deque< TYPE > &, std::list< TYPE > & %{ $result = mav_java::pointers<DERIVED>(jenv, *$1); %}
%typemap(out) HSTFwdIter< TYPE * > * %{
  $result = mav_java::pointers<DERIVED>(jenv, mav_java::drained($1));
%}
%typemap(javain) const HSTVector< TYPE * > & "addresses($javainput, JAVA::getCPtr)"
%typemap(in) const HSTVector< TYPE * > & (HSTVector< TYPE * > list) %{
  if (!mav_java::read(jenv, $input, list)) return $null;
  $1 = &list;
%}
%typemap(in, numinputs=0) HSTVector< TYPE * > &out (HSTVector< TYPE * > out), HSTVector< TYPE * > &hardware (HSTVector< TYPE * > out) "$1 = &out;"
%typemap(argout) HSTVector< TYPE * > &out %{ $result = mav_java::pointers<DERIVED>(jenv, *$1); %}
%typemap(argout) const HSTVector< TYPE * > & ""
%enddef

// Queries that fill a list of pointers; OWNER keeps what they answer.
%define MAV_FILLS(TYPE, NAME, JAVA, OWNER)
%typemap(jni) TYPE NAME "jlongArray"
%typemap(jtype) TYPE NAME "long[]"
%typemap(jstype) TYPE NAME "java.util.List<JAVA>"
%typemap(out) TYPE NAME ""
%typemap(javaout) TYPE NAME {
    final NativeHandle owner = OWNER;
    return list($jnicall, address -> new JAVA(address, owner));
  }
%enddef

// Lists of values; Java owns a copy of each.
%define MAV_COPIES(TYPE, JAVA)
%typemap(jni) HSTVector< TYPE >, const HSTVector< TYPE > & "jlongArray"
%typemap(jtype) HSTVector< TYPE >, const HSTVector< TYPE > & "long[]"
%typemap(jstype) HSTVector< TYPE >, const HSTVector< TYPE > & "java.util.List<JAVA>"
%typemap(javaout) HSTVector< TYPE >, const HSTVector< TYPE > & {
    return list($jnicall, address -> new JAVA(new NativeHandle(address, JAVA::swigDestroy)));
  }
%typemap(out) HSTVector< TYPE > %{
  $result = mav_java::copies<TYPE>(jenv, static_cast<HSTVector< TYPE > &&>($1));
%}
%typemap(out) const HSTVector< TYPE > & %{ $result = mav_java::copies<TYPE>(jenv, *$1); %}
%enddef

// Shared pointers to what a platform, or a loader, owns.
%define MAV_SHARED(TYPE)
%typemap(jni) std::shared_ptr< TYPE > "jlong"
%typemap(jtype) std::shared_ptr< TYPE > "long"
%typemap(jstype) std::shared_ptr< TYPE > "TYPE"
%typemap(javain) std::shared_ptr< TYPE > "TYPE.getCPtr($javainput)"
%typemap(javaout) std::shared_ptr< TYPE > {
    long address = $jnicall;
    return address == 0 ? null : new TYPE(address, owner());
  }
%typemap(out) std::shared_ptr< TYPE > %{ *(TYPE **)&$result = $1.get(); %}
// Its Java object is kept instead.
%typemap(in) std::shared_ptr< TYPE > %{
  if (!$input) {
    mav_java::raiseNull(jenv, "an argument is null");
    return $null;
  }
  $1 = std::shared_ptr< TYPE >(std::shared_ptr<void>(), *(TYPE **)&$input);
%}
%enddef

MAV_CONCRETE(HMAVHardwarePlatform, HPLPlatform)
MAV_CONCRETE(HMAVDevice, HPLDevice)
%typemap(jstype) HMAVHardwarePlatform *getHardwarePlatform, HMAVHardwarePlatform *getHardwareEmulationPlatform, HMAVHardwarePlatform *getRPHardwarePlatform, HMAVHardwarePlatform *getRPHardwareEmulationPlatform, HMAVHardwarePlatform *getDefaultRPHardwarePlatform, HMAVHardwarePlatform *getDefaultRPHardwareEmulationPlatform, HMAVHardwarePlatform *addPlatform "HPLPlatform"
%typemap(jstype) HMAVDevice *getDevice "HPLDevice"
MAV_POINTERS(HMAVHardwarePlatform, HPLPlatform, HPLPlatform)
MAV_POINTERS(HMAVDevice, HPLDevice, HPLDevice)
MAV_POINTERS(HMAVPlatform, HMAVPlatform, HMAVPlatform)
MAV_POINTERS(HMAVSoftwarePlatform, HMAVSoftwarePlatform, HMAVSoftwarePlatform)
MAV_POINTERS(HMAVHardwareBusInterface, HMAVHardwareBusInterface, HMAVHardwareBusInterface)
MAV_SHARED(HPLPlatform)
MAV_SHARED(HMAVSoftwarePlatform)
MAV_SHARED(HMAVPlatform)

// A tree of texts, see tree.i.
namespace boost { namespace property_tree { class ptree; } }
