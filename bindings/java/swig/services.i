// SPDX-License-Identifier: Apache-2.0
// JSON, and questions to one platform.
%module MavServices
%include "common.i"
%import(module="MavModel") "mav_platform/HwMetadataMode.h"
%include "mav_platform/JSONSerializable.h"
%import(module="MavArchives") "mav_platform/HMAVPfmFileTypes.h"
%import(module="MavArchives") "zip.i"
%import(module="MavRepository") "mav_platform/HMAVSoftwarePlatform.h"
%import(module="MavModel") "model_classes.i"

MAV_POINTERS(boost::property_tree::ptree, PropertyTree, boost::property_tree::ptree)
%include "tree.i"

// --- writers ----------------------------------------------------------------------------------------

%ignore mav_platform::JSONWriter::getTree;
%ignore mav_platform::JSONWriter::getOtherTree;
%ignore mav_platform::JSONWriter::write;
%ignore mav_platform::JSONWriter::newText;
%ignore mav_platform::JSONWriter::textView;
%ignore addKey(std::string_view, const char *);
%ignore addKey(std::string_view, const std::string &);
%ignore addItem(const char *);
%ignore addItem(const std::string &);
%ignore writeObject(const JSONSerializable &);
%ignore compactDocument;
%include "mav_platform/JSONWriter.h"
%include "mav_platform/JSONObjectWriter.h"
%include "mav_platform/JSONListWriter.h"
%extend mav_platform::JSONObjectWriter {
    void addKey(std::string_view key, long long value) { $self->addKey(key, value); }
}
%extend mav_platform::JSONListWriter {
    void addItem(bool value) { $self->addItem(value); }
}
%typemap(javaout) mav_platform::JSONValue &mav_platform::JSONValue::add, mav_platform::JSONValue &mav_platform::JSONValue::addUnlessEmpty {
    $jnicall;
    return this;
  }
%ignore mav_platform::JSONValue::JSONValue(std::nullptr_t);
%ignore mav_platform::JSONValue::JSONValue(const char *);
%include "mav_platform/JSONValue.h"
%extend mav_platform::JSONValue {
    JSONValue(bool value) { return new mav_platform::JSONValue(value); }
    JSONValue(long long value) { return new mav_platform::JSONValue(value); }
}
%nodefaultctor HMAVJSONUtils;
%ignore HMAVJSONUtils::OptionalTree;
%define NO_OPTIONAL(NAME, ...)
%ignore HMAVJSONUtils::NAME(const OptionalTree &, const std::string & __VA_ARGS__);
%enddef
NO_OPTIONAL(findKey)
NO_OPTIONAL(hasKey)
NO_OPTIONAL(getValue)
NO_OPTIONAL(getStringValue)
NO_OPTIONAL(getIntValue)
NO_OPTIONAL(getIntValue, , int)
NO_OPTIONAL(getLongValue)
NO_OPTIONAL(getLongValue, , long)
NO_OPTIONAL(getUnsignedLongValue)
NO_OPTIONAL(getUnsignedLongValue, , unsigned long)
NO_OPTIONAL(getUnsignedIntValue)
NO_OPTIONAL(getUnsignedIntValue, , unsigned)
NO_OPTIONAL(getBoolValue)
%ignore HMAVJSONUtils::writeJson(std::ostream &, const ptree &);
%ignore HMAVJSONUtils::readJson(const std::stringstream &);
%include "mav_platform/HMAVJSONUtils.h"

// --- services ---------------------------------------------------------------------------------------

%typemap(jni) const std::set< std::string > & "jobjectArray"
%typemap(jtype) const std::set< std::string > & "String[]"
%typemap(jstype) const std::set< std::string > & "java.util.Collection<String>"
%typemap(javain) const std::set< std::string > & "NativeObject.texts($javainput)"
%typemap(in) const std::set< std::string > & (HSTVector< std::string > texts, std::set< std::string > set) %{
  if (!mav_java::read(jenv, $input, texts)) return $null;
  set.insert(texts.begin(), texts.end());
  $1 = &set;
%}
// What is not found has no tree.
%{
namespace mav_java {
static jobjectArray nothing(jobjectArray) { return nullptr; }
static jlong nothing(jlong address) {
  delete reinterpret_cast<boost::property_tree::ptree *>(address);
  return 0;
}
}
%}
%typemap(javaout) boost::property_tree::ptree {
    long address = $jnicall;
    return address == 0 ? null : new PropertyTree(new NativeHandle(address, PropertyTree::swigDestroy));
  }
%typemap(argout) bool &found %{
  if (!*$1) $result = mav_java::nothing($result);
%}
%typemap(argout) const boost::property_tree::ptree & ""
%ignore getChildOptional;
%ignore NativeObjectService::scanJsonPath;
%ignore mav::platform::NativeObjectService::scanJsonPath;
%ignore mav::platform::NativeObjectService::PathFragment;
%typemap(javaout) const boost::property_tree::ptree &getChild {
    return new PropertyTree($jnicall, tree.owner());
  }
%typemap(javaout) const boost::property_tree::ptree *findNode {
    long address = $jnicall;
    return address == 0 ? null : new PropertyTree(address, tree.owner());
  }
MAV_FILLS_TEXTS(void, getDefaultPlatformLookupDirs)
MAV_FILLS_TEXTS(void, getQpfmFiles)
MAV_COPIES(mav::platform::Verdict, Verdict)
%typemap(jni) std::optional< mav::platform::SupportEntry > * "jlong"
%typemap(jtype) std::optional< mav::platform::SupportEntry > * "long"
%typemap(jstype) std::optional< mav::platform::SupportEntry > * "SupportEntry"
%typemap(javaout) std::optional< mav::platform::SupportEntry > * {
    long address = $jnicall;
    return address == 0 ? null : new SupportEntry(address, owner());
  }
%typemap(out) std::optional< mav::platform::SupportEntry > * %{
  *(mav::platform::SupportEntry **)&$result = *$1 ? &**$1 : nullptr;
%}
%ignore checkItem;
%include "mav_platform/Verdict.h"
%include "mav_platform/HMAVCatalogService.h"
%include "mav_platform/HMAVNativeCatalogService.h"
%include "mav_platform/HMAVObjectService.h"
%include "mav_platform/HMAVNativeObjectService.h"
%include "mav_platform/HMAVKeyService.h"
%include "mav_platform/HMAVNativeKeyService.h"
%include "mav_platform/HMAVDictService.h"
%include "mav_platform/HMAVNativeDictService.h"
%include "mav_platform/HMAVDocService.h"
%include "mav_platform/HMAVNativeDocService.h"
%include "mav_platform/HMAVTransformService.h"
%include "mav_platform/HMAVNativeTransformService.h"
%include "mav_platform/PlatformRepoService.h"
%include "mav_platform/NativePlatformRepoService.h"

%typemap(check) const mav::platform::Verdict *verdict ""
%include "mav_platform/PlatformOverview.h"

// --- deep check and difference ----------------------------------------------------------------------

MAV_COPIES(mav_platform::CheckFinding, CheckFinding)
MAV_COPIES(mav_platform::CheckRule, CheckRule)
MAV_COPIES(mav_platform::PlatformDifference::Change, PlatformDifference.Change)
%ignore mav_platform::PlatformCheck::run(const std::string &, const OnFile &);
// Options and callbacks stay C++; Java asks for the findings of a path.
%ignore mav_platform::CheckOptions;
%ignore mav_platform::PlatformCheck::run(const HSTVector<std::string> &, const CheckOptions &, const OnFindings &);
%ignore mav_platform::PlatformCheck::severityOf;
%nodefaultctor mav_platform::PlatformCheck;
%nodefaultctor mav_platform::PlatformDifference;
%include "mav_platform/PlatformCheck.h"
%ignore mav_platform::PlatformDifference::json;
%include "mav_platform/PlatformDifference.h"
