// SPDX-License-Identifier: Apache-2.0
// The tree of texts that services answer.
namespace boost { namespace property_tree {
%rename(PropertyTree) ptree;
%typemap(javacode) ptree %{
  /** The tree as a String, a List of what its items are, or a Map from name to what is there. */
  public Object value() {
    var items = getItems();
    if (items.isEmpty()) return getData();
    var names = getNames();
    if (names.stream().allMatch(String::isEmpty)) return items.stream().map(PropertyTree::value).toList();
    var map = new java.util.LinkedHashMap<String, Object>();
    for (int i = 0; i < items.size(); ++i) map.put(names.get(i), items.get(i).value());
    return map;
  }

  /** The tree as JSON. */
  @Override
  public String toString() {
    return toJson();
  }
%}
/// A tree of texts: a text, a list of trees without names, or trees with names.
class ptree {
  public:
    ptree();
};
} }
%extend boost::property_tree::ptree {
    /// The text of a tree without items.
    const std::string& getData() const { return $self->data(); }
    /// The names of the items, in order; those of a list are empty.
    HSTVector<std::string> getNames() const {
        HSTVector<std::string> names;
        for (const auto& item : *$self) names.push_back(item.first);
        return names;
    }
    HSTVector<boost::property_tree::ptree*> getItems() {
        HSTVector<boost::property_tree::ptree*> items;
        for (auto& item : *$self) items.push_back(&item.second);
        return items;
    }
    std::string toJson() const { return mav::platform::NativeObjectService::getNodeAsJsonStr(*$self); }
}
