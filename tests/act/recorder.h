#pragma once

// A recording stand-in for the contact manager's automation objects: every member call and
// every window hook lands, in order, in one call list; any automation call can be made to fail.

#include "act/contactlink.h"

#include <QList>
#include <QStringList>

#include <optional>
#include <utility>

namespace zf::act::test {

using namespace Qt::StringLiterals;

struct Recorder {
    QStringList calls;
    int failAt = -1; // index among the automation calls (not the hooks) that throws
    int automationCalls = 0;
    bool createWrongObject = false;

    std::optional<bool> running = true;
    std::optional<bool> open = true;
    QList<std::pair<qint32, QString>> fields;
    quint8 completionChoice = 2;

    void automation(const QString& call)
    {
        calls << call;
        if (automationCalls++ == failAt)
            throw ActError(u"injected at "_s + call);
    }

    WindowHooks hooks()
    {
        WindowHooks h;
        h.setBusyCursor = [this](bool busy) { calls << u"busy(%1)"_s.arg(int(busy)); };
        h.setTopMost = [this](bool onTop) { calls << u"topMost(%1)"_s.arg(int(onTop)); };
        h.repaint = [this] { calls << u"repaint"_s; };
        h.showMessage = [this](const QString& text, int style) {
            calls << u"message(%1,%2)"_s.arg(text).arg(style);
            return 1;
        };
        h.showCompletionPrompt = [this](bool created) {
            calls << u"prompt(%1)"_s.arg(int(created));
            return completionChoice;
        };
        h.fetchClipboard = [this] { calls << u"fetchClipboard"_s; };
        h.saveFieldCache = [this] { calls << u"saveFieldCache"_s; };
        h.closeProgram = [this] { calls << u"closeProgram"_s; };
        h.focusMainWindow = [this] { calls << u"focus"_s; };
        return h;
    }
};

class FakeContactView : public ContactViewObject {
public:
    explicit FakeContactView(Recorder& r) : m_r(r) {}
    ~FakeContactView() override { m_r.calls << u"~ContactView"_s; }
    void AddNewContact() override { m_r.automation(u"AddNewContact()"_s); }
    void SetField(qint32 id, const QString& value) override
    {
        m_r.automation(u"SetField(%1,%2)"_s.arg(id).arg(value));
    }

private:
    Recorder& m_r;
};

class FakeViews : public ViewsObject {
public:
    explicit FakeViews(Recorder& r) : m_r(r) {}
    ~FakeViews() override { m_r.calls << u"~Views"_s; }
    std::shared_ptr<ContactViewObject> Create(qint16 type, const QString& name) override
    {
        m_r.automation(u"Create(%1,%2)"_s.arg(type).arg(name));
        return std::make_shared<FakeContactView>(m_r);
    }

private:
    Recorder& m_r;
};

class FakeApplication : public ApplicationObject {
public:
    explicit FakeApplication(Recorder& r) : m_r(r) {}
    ~FakeApplication() override { m_r.calls << u"~Application"_s; }
    std::shared_ptr<ViewsObject> Views() override
    {
        m_r.automation(u"Views()"_s);
        return std::make_shared<FakeViews>(m_r);
    }

private:
    Recorder& m_r;
};

class FakeFields : public FieldsObject {
public:
    explicit FakeFields(Recorder& r) : m_r(r) {}
    qint32 FieldIdAt(qint16 pos) override
    {
        m_r.automation(u"FieldIdAt(%1)"_s.arg(pos));
        return m_r.fields.at(pos).first;
    }
    QString Label(qint32 id) override
    {
        m_r.automation(u"Label(%1)"_s.arg(id));
        for (const auto& [fieldId, label] : m_r.fields)
            if (fieldId == id)
                return label;
        return {};
    }

private:
    Recorder& m_r;
};

class FakeContact : public ContactObject {
public:
    explicit FakeContact(Recorder& r) : m_r(r) {}
    std::shared_ptr<FieldsObject> Fields() override
    {
        m_r.automation(u"Fields()"_s);
        return std::make_shared<FakeFields>(m_r);
    }
    qint16 FieldCount() override
    {
        m_r.automation(u"FieldCount()"_s);
        return qint16(m_r.fields.size());
    }

private:
    Recorder& m_r;
};

class FakeDatabase : public DatabaseObject {
public:
    explicit FakeDatabase(Recorder& r) : m_r(r) {}
    ~FakeDatabase() override { m_r.calls << u"~Database"_s; }
    void OpenEx(const QString& path) override { m_r.automation(u"OpenEx(%1)"_s.arg(path)); }
    std::optional<bool> IsOpen() override
    {
        m_r.automation(u"IsOpen()"_s);
        return m_r.open;
    }
    std::shared_ptr<ContactObject> Contact() override
    {
        m_r.automation(u"Contact()"_s);
        return std::make_shared<FakeContact>(m_r);
    }

private:
    Recorder& m_r;
};

class FakeFactory : public ObjectFactory, public EventControl {
public:
    explicit FakeFactory(Recorder& r) : m_r(r) {}
    std::shared_ptr<AutomationObject> CreateObject(const QString& progId) override
    {
        m_r.automation(u"CreateObject(%1)"_s.arg(progId));
        if (m_r.createWrongObject)
            return std::make_shared<FakeFields>(m_r);
        if (progId == ProgIdApplication)
            return std::make_shared<FakeApplication>(m_r);
        if (progId == ProgIdDatabase)
            return std::make_shared<FakeDatabase>(m_r);
        return nullptr;
    }
    EventControl& eventControl() override { return *this; }
    std::optional<bool> IsActRunning() override
    {
        m_r.automation(u"IsActRunning()"_s);
        return m_r.running;
    }

private:
    Recorder& m_r;
};

} // namespace zf::act::test
