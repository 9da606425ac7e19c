// The slots of the virtual functions, which hosts are compiled against.
#include "tests/support/SlotOrder.h"

#include <gtest/gtest.h>

#include "NyServer/socket/CUT_File.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/CUT_WSThread.h"

namespace {

// The functions follow each other from slot 2 on, after the destructors.
template <class... Functions>
void expectOrder(Functions... functions) {
    size_t next = 2;
    for (const size_t slot : {slotOf(functions)...}) EXPECT_EQ(slot, next++);
    EXPECT_EQ(next, 2 + sizeof...(functions));
}

TEST(SlotOrder, OfAFile) {
    using F = CUT_File;
    expectOrder(&F::Open, &F::Close, &F::Read, &F::Write, &F::Seek, &F::GetSize);
}

TEST(SlotOrder, OfADataSource) {
    using D = CUT_DataSource;
    expectOrder(&D::Clone, &D::Open, &D::Close, &D::ReadLine, &D::WriteLine, &D::Read, &D::Write,
                &D::Seek, &D::Find);
}

TEST(SlotOrder, OfAClient) {
    struct C : CUT_WSClient {
        static void check() {
            const auto sendSource = static_cast<int (C::*)(CUT_DataSource&)>(&C::Send);
            const auto sendBytes = static_cast<int (C::*)(const char*, int)>(&C::Send);
            const auto receiveSource =
                static_cast<int (C::*)(CUT_DataSource&, OpenMsgType, int, long)>(&C::Receive);
            const auto receiveBytes = static_cast<int (C::*)(char*, int, int)>(&C::Receive);
            expectOrder(&C::Connect, &C::ConnectBound, &C::CreateUDPSocket, &C::CreateSocket,
                        &C::CloseConnection, &C::InitAsync, &C::WaitForConnect, &C::WaitForAccept,
                        &C::AcceptConnection, sendSource, sendBytes, &C::SendAsLine, &C::SendFile,
                        &C::SendTo, &C::WaitForSend, receiveSource, receiveBytes, &C::ReceiveToFile,
                        &C::ReceiveLine, &C::ClearReceiveBuffer, &C::ReceiveFrom,
                        &C::WaitForReceive, &C::OnError, &C::ReceiveFileStatus, &C::SendFileStatus,
                        &C::IsAborted, &C::OnAsyncNotify, &C::OnAsyncGetNameNotify,
                        &C::OnAsyncGetAddressNotify);
        }
    };
    C::check();
}

TEST(SlotOrder, OfAWorker) {
    using W = CUT_WSThread;
    const auto sendBytes = static_cast<int (W::*)(const char*, int, int)>(&W::Send);
    const auto sendSource = static_cast<int (W::*)(CUT_DataSource&, long&)>(&W::Send);
    const auto receiveBytes = static_cast<int (W::*)(char*, int, int)>(&W::Receive);
    const auto receiveSource =
        static_cast<int (W::*)(CUT_DataSource&, long&, OpenMsgType, int)>(&W::Receive);
    expectOrder(sendBytes, sendSource, &W::SendAsLine, &W::SendFile, receiveBytes, receiveSource,
                &W::ReceiveToFile, &W::ReceiveLine, &W::OnConnect, &W::OnMaxConnect, &W::OnReserved,
                &W::ReceiveFileStatus, &W::SendFileStatus, &W::OnError);
}

TEST(SlotOrder, OfAServer) {
    struct S : CUT_WSServer {
        static void check() {
            expectOrder(&S::ConnectToPort, &S::Pause, &S::Resume, &S::CreateInstance,
                        &S::ReleaseInstance, &S::OnCanAccept, &S::OnStatus, &S::OnError);
        }
    };
    S::check();
}

// A host compiled against the header names every argument; one more is a new binary interface.
static_assert(std::is_same_v<decltype(&CUT_WSClient::Connect),
                             int (CUT_WSClient::*)(unsigned int, const char*, long, int, int)>);

}  // namespace
