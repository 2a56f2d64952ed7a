// Free edges of a face mesh: the edges that belong to exactly one face, linked into chains.
//
// A run builds a graph of nodes and edges from a flat face list (per face its corner count, then its
// corners), drops the edges that several faces share and walks what is left. The graph lives as long as the
// run. All operations are for one thread; a failed allocation leaves as the exception of the standard
// containers. FMD_GenerateFreeEdges of fmdtoolkit.h does a run for a body and keeps its chains.
#ifndef FMDTOOLKIT_FREE_EDGES_H
#define FMDTOOLKIT_FREE_EDGES_H

#include <list>
#include <map>
#include <string>
#include <vector>

#if defined(__GNUC__)
#define FMD_EXPORTED_CLASS __attribute__((visibility("default")))
#else
#define FMD_EXPORTED_CLASS
#endif

class cFMDEdge;

// A vertex: an id, which is what the face list holds at a corner, and the edges that touch it, not owned.
class FMD_EXPORTED_CLASS cFMDNode {
 public:
  explicit cFMDNode(int id);
  ~cFMDNode();
  cFMDNode(const cFMDNode&) = delete;
  cFMDNode& operator=(const cFMDNode&) = delete;

  int ID() const;
  int EdgeCount() const;
  void AddLinkedEdge(cFMDEdge* edge);
  // Removes every entry for the edge.
  void RemoveLinkedEdge(cFMDEdge* edge);

  // The other end with the smallest id, whose edge is taken out of the lists of both ends; null without
  // edges.
  cFMDNode* GetConnectedNode();

  // The chain through this node, as ids, using up its edges: closed, with this node first and last, or open,
  // from its far end through this node to its near end. A walk stops at a node with edges left other than
  // one.
  std::list<int> FindFreeEdge();

 private:
  int id_;
  std::list<cFMDEdge*> linked_edges_;
};

// An edge, the same in both directions. It enters itself in the lists of its ends and leaves them when it
// goes.
class FMD_EXPORTED_CLASS cFMDEdge {
 public:
  cFMDEdge(cFMDNode* one, cFMDNode* other);
  ~cFMDEdge();
  cFMDEdge(const cFMDEdge&) = delete;
  cFMDEdge& operator=(const cFMDEdge&) = delete;

  // The two ids in decimal, the smaller first, joined by "_".
  const std::string& Key() const;
  // Faces that have this edge; 1 at first.
  int RefCount() const;
  void AddRef();
  cFMDNode* GetAnotherNode(const cFMDNode* node) const;

 private:
  cFMDNode* first_;
  cFMDNode* second_;
  std::string key_;
  int reference_count_;
};

// A run.
class FMD_EXPORTED_CLASS cFMDFreeEdges {
 public:
  cFMDFreeEdges();
  ~cFMDFreeEdges();
  cFMDFreeEdges(const cFMDFreeEdges&) = delete;
  cFMDFreeEdges& operator=(const cFMDFreeEdges&) = delete;

  // Finds the chains of so many faces, each with a corner count of 0 or more in front. A face of fewer than
  // three corners has no edges. What an earlier call found is forgotten.
  void FindFreeEdges(int faces, int* list);

  // A copy of the chains, in ascending order of the node that each was found from.
  std::vector<std::list<int>> GetFreeEdges() const;

 private:
  cFMDNode* FindNode(int id);
  void AddEdge(cFMDEdge* edge);
  void PopulateEdges(int faces, int* list);
  void RemoveInternalEdges();
  void GenerateFreeEdgeList();
  void Clear();

  std::map<int, cFMDNode*> nodes_;
  std::map<std::string, cFMDEdge*> edges_;
  std::vector<std::list<int>> free_edges_;
};

#endif
